#include "tests/support/unit.h"

namespace onu::test {

TEST_F(Unit, Commands1And19And20Accounts) {
  checkWithoutValues({{"cmd_id=1&username=admin&password=pw", "1"},
                      {"cmd_id=19&pwdold=&pwdnew=new", "2"},
                      {"cmd_id=20&pwdold=&pwdnew=new", "2"}});
  check({{"cmd_id=1&username=admin&password=se<cret", "0"},
         {"cmd_id=1&username=admin&password=secret", "2"},
         {"cmd_id=1&action=1&username=user&password=", "0"},
         {"cmd_id=1&username=guest&password=", "0"},
         {"cmd_id=19&pwdold=se<creT&pwdnew=y", "1"},
         {"cmd_id=19&action=0&pwdold=se<cret&pwdnew=y", "0", "tevo ", "se&lt;cret|y"},
         {"cmd_id=20&pwdold=x&pwdnew=y", "1"},
         {"cmd_id=20&pwdold=&pwdnew=", "0"},
         {"cmd_id=20&pwdnew=" + kOdd.text + "&pwdold=", "0", "tevo ",
          "<user><|<user>" + kOdd.asText + "<"}});
}

}  // namespace onu::test
