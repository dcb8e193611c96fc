// An IPv4 address as dotted text, for a record's %s. Each value has its own buffer, because a record may show several.
#ifndef ZR_NEXA_IPV4_TEXT_H
#define ZR_NEXA_IPV4_TEXT_H

#include <arpa/inet.h>
#include <stdint.h>

namespace zr_nexa {

class Ipv4Text {
public:
    explicit Ipv4Text(uint32_t network_order)
    {
        inet_ntop(AF_INET, &network_order, text_, sizeof(text_));
    }
    const char* c_str() const
    {
        return text_;
    }

private:
    char text_[INET_ADDRSTRLEN];
};

}  // namespace zr_nexa

#endif
