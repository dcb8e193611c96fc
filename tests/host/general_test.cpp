#include "host_fixture.h"

namespace {

using GeneralHostTest = HostTest;

unsigned char data_path_state(QCMAP_Client& client)
{
    unsigned char state = 0xa5;
    qmi_error_type_v01 err = QMI_ERR_INTERNAL_V01;
    EXPECT_TRUE(client.GetDataPathOptStatus(&state, &err));
    EXPECT_EQ(err, QMI_ERR_NONE_V01);
    return state;
}

TEST_F(GeneralHostTest, DataPathSwitch)
{
    OpenClient client;
    EXPECT_EQ(data_path_state(client), 1);
    EXPECT_TRUE(client.SetDataPathOptStatus(0, &err));
    EXPECT_EQ(data_path_state(client), 0);
    EXPECT_FALSE(client.SetDataPathOptStatus(2, &err));
    EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    EXPECT_EQ(data_path_state(client), 0);
    EXPECT_TRUE(client.SetDataPathOptStatus(1, &err));
    EXPECT_EQ(data_path_state(client), 1);
}

TEST_F(GeneralHostTest, RestoreBringsBackFactoryState)
{
    OpenClient client;
    OpenClient other;
    EXPECT_TRUE(client.SetDataPathOptStatus(0, &err));
    EXPECT_TRUE(client.DisableIPV4(&err));
    unsigned char url[128] = "elsewhere";
    EXPECT_TRUE(client.SetGatewayUrl(url, 9, &err));
    EXPECT_EQ(data_path_state(other), 0);

    err = QMI_ERR_INTERNAL_V01;
    EXPECT_TRUE(client.RestoreFactoryConfig(&err));
    EXPECT_EQ(err, QMI_ERR_NONE_V01);
    EXPECT_EQ(data_path_state(client), 1);
    EXPECT_EQ(data_path_state(other), 1);
    unsigned char state = 0xa5;
    EXPECT_TRUE(other.GetIPv4State(&state, &err));
    EXPECT_EQ(state, 1);
    unsigned int len = 0;
    EXPECT_TRUE(other.GetGatewayUrl(url, &len, &err));
    EXPECT_STREQ(reinterpret_cast<char*>(url), "mobileap.home");
}

}  // namespace
