#include "commands/accounts.h"

#include "config/config_data.h"

namespace onu {
namespace {

void changePassword(WebRequest& request, int (ConfigData::*get)(std::string&) const,
                    int (ConfigData::*set)(const std::string&) const) {
  const ConfigData& config = ConfigData::getInstance();
  std::string stored;
  (config.*get)(stored);
  if (getParam(request.query, "pwdold") != stored) {
    return request.reply.sendJsonResponse("1");
  }
  const int result = (config.*set)(getParam(request.query, "pwdnew"));
  request.reply.sendJsonResponse(result == 0 ? "0" : "2");
}

}  // namespace

void checkLogin(WebRequest& request) {
  const std::string account = getParam(request.query, "username");
  const std::string password = getParam(request.query, "password");
  std::string stored;
  if (ConfigData::getInstance().getAccountPassword(account, stored) != 0) {
    return request.reply.sendJsonResponse("1");
  }
  request.reply.sendJsonResponse(stored == password ? "0" : "2");
}

void changeAdminPassword(WebRequest& request) {
  changePassword(request, &ConfigData::getAdminPassword, &ConfigData::setAdminPassword);
}

void changeUserPassword(WebRequest& request) {
  changePassword(request, &ConfigData::getUserPassword, &ConfigData::setUserPassword);
}

}  // namespace onu
