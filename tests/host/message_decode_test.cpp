#include <gtest/gtest.h>
#include <string.h>

#include <vector>

#include "qcmap_indications.h"
#include "qmi_client.h"

namespace {

struct Message {
    unsigned int id;
    unsigned int size;
};

constexpr Message kMessages[] = {{34, 136}, {35, 36}, {36, 444}, {169, 10888}};

std::vector<unsigned char> wire_of(unsigned int size)
{
    std::vector<unsigned char> wire = {1, static_cast<unsigned char>(size), static_cast<unsigned char>(size >> 8)};
    for (unsigned int i = 0; i < size; ++i)
        wire.push_back(static_cast<unsigned char>(i * 7 + 1));
    return wire;
}

int decode(unsigned int id, const std::vector<unsigned char>& wire, std::vector<unsigned char>* record,
           qmi_idl_type_of_message_type type = QMI_IDL_INDICATION)
{
    return qmi_client_message_decode(nullptr, type, id, wire.data(), static_cast<unsigned int>(wire.size()),
                                     record->data(), static_cast<unsigned int>(record->size()));
}

TEST(MessageDecode, CopiesTheRecord)
{
    for (const Message& message : kMessages) {
        const std::vector<unsigned char> wire = wire_of(message.size);
        std::vector<unsigned char> record(message.size, 0xa5);
        EXPECT_EQ(decode(message.id, wire, &record), QMI_NO_ERR) << message.id;
        EXPECT_EQ(memcmp(record.data(), wire.data() + 3, message.size), 0) << message.id;
    }
}

TEST(MessageDecode, AnyOtherLengthIsRefusedAndNothingWritten)
{
    for (const Message& message : kMessages) {
        std::vector<unsigned char> record(message.size, 0xa5);
        const std::vector<unsigned char> untouched = record;
        std::vector<unsigned char> wire = wire_of(message.size);
        wire.pop_back();
        EXPECT_EQ(decode(message.id, wire, &record), QMI_IDL_LIB_BAD_LENGTH);
        wire = wire_of(message.size);
        wire.push_back(0);
        EXPECT_EQ(decode(message.id, wire, &record), QMI_IDL_LIB_BAD_LENGTH);
        for (const unsigned int size : {0u, 1u, 2u, 3u}) {
            wire = wire_of(message.size);
            wire.resize(size);
            EXPECT_EQ(decode(message.id, wire, &record), QMI_IDL_LIB_BAD_LENGTH) << size;
        }
        EXPECT_EQ(decode(message.id, wire_of(message.size - 1), &record), QMI_IDL_LIB_BAD_LENGTH);
        EXPECT_EQ(decode(message.id, wire_of(message.size + 1), &record), QMI_IDL_LIB_BAD_LENGTH);
        wire = wire_of(message.size);
        wire[1] ^= 1;  // the record says another length than the buffer has
        EXPECT_EQ(decode(message.id, wire, &record), QMI_IDL_LIB_BAD_LENGTH);
        EXPECT_EQ(record, untouched);

        std::vector<unsigned char> small(message.size - 1, 0xa5);
        EXPECT_EQ(decode(message.id, wire_of(message.size), &small), QMI_IDL_LIB_BAD_LENGTH);
        std::vector<unsigned char> large(message.size + 1, 0xa5);
        EXPECT_EQ(decode(message.id, wire_of(message.size), &large), QMI_IDL_LIB_BAD_LENGTH);
    }
}

TEST(MessageDecode, OtherMessagesAreRefused)
{
    std::vector<unsigned char> record(136, 0xa5);
    EXPECT_EQ(decode(33, wire_of(136), &record), QMI_IDL_LIB_UNKNOWN_MESSAGE);
    EXPECT_EQ(decode(0xffffffff, wire_of(136), &record), QMI_IDL_LIB_UNKNOWN_MESSAGE);
    EXPECT_EQ(decode(34, wire_of(136), &record, QMI_IDL_RESPONSE), QMI_IDL_LIB_MISMATCHED_MESSAGE);
    std::vector<unsigned char> wire = wire_of(136);
    wire[0] = 2;
    EXPECT_EQ(decode(34, wire, &record), QMI_IDL_LIB_MISMATCHED_MESSAGE);
    EXPECT_EQ(qmi_client_message_decode(nullptr, QMI_IDL_INDICATION, 34, nullptr, 139, record.data(), 136),
              QMI_INTERNAL_ERR);
    EXPECT_EQ(qmi_client_message_decode(nullptr, QMI_IDL_INDICATION, 34, wire.data(), 139, nullptr, 136),
              QMI_INTERNAL_ERR);
    EXPECT_EQ(record, std::vector<unsigned char>(136, 0xa5));
}

}  // namespace
