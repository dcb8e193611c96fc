#include "store.h"

namespace mobile_ap {

void Store::check_profile(uint32_t handle)
{
    if (!one<int>("SELECT 1 FROM wwan_profile WHERE handle = ?", handle)) refuse(QMI_ERR_INVALID_HANDLE_V01);
}

void Store::check_bridge(int id)
{
    if (!one<int>("SELECT 1 FROM lan_bridge WHERE id = ?", id)) refuse(QMI_ERR_INVALID_ID_V01);
}

uint32_t Store::selected_profile()
{
    check_profile(selected_profile_);
    return selected_profile_;
}

void Store::select_profile(uint32_t handle)
{
    check_profile(handle);
    selected_profile_ = handle;
}

int Store::selected_bridge()
{
    check_bridge(selected_bridge_);
    return selected_bridge_;
}

void Store::select_bridge(int id)
{
    check_bridge(id);
    selected_bridge_ = id;
}

}  // namespace mobile_ap
