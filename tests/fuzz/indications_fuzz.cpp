// Indications as they come from the platform's thread, through the real decoding.
//
// Of the input the first byte says which message, the second whether the header is right; the rest is the wire, or the
// record in it.
#include <qcmap_indications.h>
#include <zr_nexa_client_api.h>

#include <algorithm>
#include <iterator>
#include <vector>

#include "fuzz.h"
#include "indication_wire.h"
#include "scripted_platform.h"

namespace {

struct Message {
    unsigned int id;
    size_t size;
    uint32_t event;
    uint32_t event_size;
};
constexpr Message kMessages[] = {
    {QCMAP_MSGR_BRING_UP_WWAN_IND_V01, sizeof(qcmap_msgr_bring_up_wwan_ind_msg_v01), ZR_NEXA_IND_BRING_UP, 92},
    {QCMAP_MSGR_TEAR_DOWN_WWAN_IND_V01, sizeof(qcmap_msgr_tear_down_wwan_ind_msg_v01), ZR_NEXA_IND_TEAR_DOWN, 92},
    {QCMAP_MSGR_WWAN_STATUS_IND_V01, sizeof(qcmap_msgr_wwan_status_ind_msg_v01), ZR_NEXA_IND_STATUS, 92},
    {QCMAP_MSGR_STATUS_REPORT_IND_V01, sizeof(qcmap_msgr_status_report_ind_msg_v01), ZR_NEXA_IND_STATUS_REPORT, 10888},
};

int calls;
uint32_t last_event;
uint32_t last_size;
uint32_t sum;  // of all bytes handed on, so that they are read

void on_event(uint32_t event, uint32_t size, const void* data, ...)
{
    ++calls;
    last_event = event;
    last_size = size;
    const uint8_t* bytes = static_cast<const uint8_t*>(data);
    for (uint32_t i = 0; i < size; ++i)
        sum += bytes[i];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2) return -1;
    scripted::Platform& platform = scripted::platform();
    platform.reset();
    fuzz::expect(zr_nexa_client_init(on_event) == 0);
    const size_t which = data[0] % (std::size(kMessages) + 1);
    const Message other = {data[0] * 16777619u, size - 2, 0, 0};
    const Message& message = which < std::size(kMessages) ? kMessages[which] : other;
    std::vector<uint8_t> wire;
    if (data[1] % 2 == 0) {
        const mobile_ap::WireHeader header = mobile_ap::wire_header(message.size);
        wire.assign(header.begin(), header.end());
        wire.resize(header.size() + message.size);
        std::copy_n(data + 2, std::min(size - 2, message.size), wire.begin() + header.size());
    } else {
        wire.assign(data + 2, data + size);
    }

    calls = 0;
    platform.indication_cb(nullptr, message.id, wire.data(), static_cast<unsigned int>(wire.size()), nullptr);
    fuzz::expect(calls <= 1);
    fuzz::expect(calls == 0 || (last_event == message.event && last_size == message.event_size));
    fuzz::expect(calls == 0 || wire.size() == mobile_ap::wire_header(0).size() + message.size);
    zr_nexa_client_uninit();
    fuzz::expect(platform.complaints.empty());
    return 0;
}
