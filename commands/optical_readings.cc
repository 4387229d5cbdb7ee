#include "commands/optical_readings.h"

#include "device/i2c_acess.h"
#include "device/optical_units.h"

namespace onu {

void getOpticalReadings(WebRequest& request) {
  OpticalDiag diag;
  readOpticalDiagnostics(diag);

  JsonFields fields;
  fields["temp"] = temperatureText(diag.temperature);
  fields["voltage"] = voltageText(diag.supplyVoltage);
  fields["bias"] = biasText(diag.txBiasCurrent);
  fields["rx_opt_power"] = powerText(diag.rxReceivedPower);
  fields["tx_opt_power"] = powerText(diag.txOpticalPower);
  request.reply.sendJsonResponse(toJsonObject(fields));
}

}  // namespace onu
