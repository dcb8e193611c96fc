// The GRE functions where the library that does their work is not to be found.
#include <arpa/inet.h>
#include <dlfcn.h>

#include "api_test.h"

namespace {

class GreLoadTest : public ClosedApiTest {
protected:
    void SetUp() override
    {
        void* const found = dlopen(ZR_NEXA_IPACM_CFG_LIBRARY, RTLD_NOW);
        if (found != nullptr) GTEST_SKIP() << "the library is installed on this machine";
    }
};

TEST_F(GreLoadTest, SetGivesMinusOne)
{
    zr_nexa_wan_gre_ipacfg_t cfg = {};
    cfg.num_of_subnet_masks = 1;
    cfg.subnet_mask[0] = htonl(0xFFFFFF00);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), -1);
        expect_row("zr_nexa_wan_gre_ipacfg_set_v1", {},
                   {info("entry"), info("gre_config.subnet_mask[0]:255.255.255.0"),
                    error("zr_nexa_gre_ipacfg_set_v1 failed, ret:-1")});
    }
}

TEST_F(GreLoadTest, GetGivesMinusOneAndLeavesTheRecord)
{
    auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), -1);
    expect_row("zr_nexa_wan_gre_ipacfg_get_v1", {}, {info("entry"), error("zr_nexa_gre_ipacfg_get_v1 failed, ret:-1")});
    EXPECT_TRUE(is_poisoned(cfg));
}

}  // namespace
