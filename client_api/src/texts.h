// Values as texts, for a record's %s. Each has its own buffer, because a record may show several.
#ifndef ZR_NEXA_TEXTS_H
#define ZR_NEXA_TEXTS_H

#include <arpa/inet.h>
#include <stdint.h>
#include <string.h>

#include "platform.h"

namespace zr_nexa {

template <size_t size>
class Text {
public:
    const char* c_str() const
    {
        return text_;
    }

protected:
    char text_[size];
};

// At most size bytes of a text; nothing is read beyond them.
template <size_t size>
class FieldText : public Text<size + 1> {
public:
    // A field of fixed size, terminated only when its text is shorter.
    template <typename Byte>
    explicit FieldText(const Byte (&field)[size])
    {
        static_assert(sizeof(Byte) == 1);
        memcpy(this->text_, field, size);
        this->text_[size] = '\0';
    }
    // A caller's buffer, which may end behind its zero.
    explicit FieldText(const char* buffer)
    {
        const size_t length = strnlen(buffer, size);
        memcpy(this->text_, buffer, length);
        this->text_[length] = '\0';
    }
};

class Ipv4Text : public Text<INET_ADDRSTRLEN> {
public:
    explicit Ipv4Text(uint32_t network_order)
    {
        inet_ntop(AF_INET, &network_order, text_, sizeof(text_));
    }
};

class Ipv6Text : public Text<INET6_ADDRSTRLEN> {
public:
    explicit Ipv6Text(const uint8_t (&address)[16])
    {
        inet_ntop(AF_INET6, address, text_, sizeof(text_));
    }
};

class MacText : public Text<18> {
public:
    explicit MacText(const uint8_t (&mac)[6])
    {
        ds_mac_addr_ntop(mac, text_);
    }
};

}  // namespace zr_nexa

#endif
