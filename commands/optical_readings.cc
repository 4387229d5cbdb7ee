#include "commands/optical_readings.h"

#include "device/i2c_acess.h"
#include "device/optical_units.h"

namespace onu {

void sendOpticalReadings(WebRequest& request) {
  OpticalDiag diag;
  readOpticalDiagnostics(diag);
  request.reply.sendObject({{"bias", biasText(diag.txBiasCurrent)},
                            {"rx_opt_power", powerText(diag.rxReceivedPower)},
                            {"temp", temperatureText(diag.temperature)},
                            {"tx_opt_power", powerText(diag.txOpticalPower)},
                            {"voltage", voltageText(diag.supplyVoltage)}});
}

}  // namespace onu
