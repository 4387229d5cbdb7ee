// The least that answering a request can cost: a program linked like the product that writes the
// reply to cmd_id=8 as it stands, without looking at the request or the driver.

#include <unistd.h>

#include <string_view>

int main() {
  constexpr std::string_view kReply =
      "HTTP/1.0 200 OK\r\nContent-Type: application/json\r\nConnection: close\r\n\r\n"
      "{rxCtrlFrames:\"115422\",rxDataFrames:\"631793\",rxFcsFrames:\"0\",rxGateFrames:\"648391\","
      "rxLongFrames:\"0\",rxReportFrames:\"73227\",rxShortFrames:\"2\",swRegAckFrames:\"1\","
      "swRegDeRegFrames:\"0\",swRegNackFrames:\"0\",swRegReRegFrams:\"1\",swRxErrorFrames:\"2\","
      "swRxTotalFrames:\"747215\",swTxErorFrames:\"0\",swTxTotalFrames:\"524818\","
      "txByteAllow:\"0x3d090\",txDataFrames:\"522770\",txRegisterAckFrames:\"1\","
      "txRegisterRequestFrames:\"1\",txReportFrames:\"73227\"}\n";
  return ::write(STDOUT_FILENO, kReply.data(), kReply.size()) == 0 ? 1 : 0;
}
