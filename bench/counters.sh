#!/bin/busybox sh
# shellcheck shell=dash disable=SC2016 # the program is for awk
#
# The job of cmd_id=8 as a shell script would do it: the request's number, the driver's counters in
# the order of their keys, the reply.
case $QUERY_STRING in
  *cmd_id=8*) ;;
  *) exit 1 ;;
esac
exec /bin/busybox awk '
  BEGIN {
    split("rxFcsFrames rxShortFrames rxLongFrames rxDataFrames rxCtrlFrames rxReportFrames " \
          "rxGateFrames txRegisterRequestFrames txRegisterAckFrames txReportFrames " \
          "txDataFrames txByteAllow swTxTotalFrames swTxErorFrames swRxTotalFrames " \
          "swRxErrorFrames swRegAckFrames swRegNackFrames swRegDeRegFrames swRegReRegFrams", name)
    count = split("rxCtrlFrames rxDataFrames rxFcsFrames rxGateFrames rxLongFrames " \
                  "rxReportFrames rxShortFrames swRegAckFrames swRegDeRegFrames " \
                  "swRegNackFrames swRegReRegFrams swRxErrorFrames swRxTotalFrames " \
                  "swTxErorFrames swTxTotalFrames txByteAllow txDataFrames " \
                  "txRegisterAckFrames txRegisterRequestFrames txReportFrames", key)
  }
  /^\[/ {
    tokens = split(substr($0, 6, length($0) - 6), token, " +")
    for (i = 1; i <= tokens; i++)
      if (token[i] != "") value[name[++found]] = token[i]
  }
  END {
    printf "HTTP/1.0 200 OK\r\nContent-Type: application/json\r\nConnection: close\r\n\r\n{"
    for (i = 1; i <= count; i++)
      printf "%s%s:\"%s\"", (i > 1 ? "," : ""), key[i], value[key[i]]
    print "}"
  }' /sys/devices/platform/epon/pm/allCnt
