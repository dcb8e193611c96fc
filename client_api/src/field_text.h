// A copy of a fixed-size field that ends in a zero: what a record's %s is handed, so that nothing beyond the field is
// read.
#ifndef ZR_NEXA_FIELD_TEXT_H
#define ZR_NEXA_FIELD_TEXT_H

#include <cstddef>
#include <cstring>

namespace zr_nexa {

template <size_t size>
class FieldText {
public:
    template <typename Byte>
    explicit FieldText(const Byte (&field)[size])
    {
        static_assert(sizeof(Byte) == 1);
        std::memcpy(text_, field, size);
        text_[size] = '\0';
    }
    const char* c_str() const
    {
        return text_;
    }

private:
    char text_[size + 1];
};

}  // namespace zr_nexa

#endif
