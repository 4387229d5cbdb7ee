// Command 4.

#include "tests/support/commands.h"

namespace onu::test {

TEST_F(Commands, PortStatus) {
  checkWithoutValues(
      {{"cmd_id=4", R"([{VlanInfo_mode:"",VlanInfo_serial:"",admin_status:"1",auto_neg:"",)"
                    R"(default_vid:"",fast_leave:"0",link:"1",link_rate:"",loop_detect:"1",)"
                    R"(max_igmp_group:"",mc_mode:"",mc_tag_oper:"0",pause:""}])"}});
  check({{"cmd_id=4&action=1&port=1",
          R"([{VlanInfo_mode:"v0",VlanInfo_serial:"l0",admin_status:"1",auto_neg:"a0",)"
          R"(default_vid:"d0",fast_leave:"0",link:"1",link_rate:"m0",loop_detect:"0",)"
          R"(max_igmp_group:"32",mc_mode:"a<"b",mc_tag_oper:"0",pause:"f0"}])"}});
}

}  // namespace onu::test
