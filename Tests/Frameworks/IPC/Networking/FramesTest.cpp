// The frames of the test link byte by byte.
#include <gtest/gtest.h>

#include <limits>

#include "Frameworks/IPC/Networking/CommunicationsCommand.h"
#include "Frameworks/IPC/Networking/PayloadContainer.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes ImageOf(const CommunicationsCommand& command) { return {command.GetImage().begin(), command.GetImage().end()}; }

CommunicationsCommand Received(const Bytes& bytes) {
    CommunicationsCommand command;
    std::copy(bytes.begin(), bytes.end(), command.GetImage().begin());
    return command;
}

CommunicationsCommand WithValue(float value) {
    CommunicationsCommand command;
    command.SetValue(value);
    return command;
}

// All 32 bytes differ, reserved ones included.
const Bytes FullHeader = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x05,
                          0x80, 0x48, 0x03, 0x03, 0x02, 0x01, 0x12, 0x02, 0x00, 0x88, 0x13,
                          0x17, 0x18, 0x19, 0x1A, 0x1B, 0x1C, 0x1D, 0x1E, 0x1F, 0x20};

TimeInfo At(std::int32_t seconds, std::int32_t nanoSeconds) {
    TimeInfo time;
    time = timespec{seconds, nanoSeconds};
    return time;
}

}  // namespace

TEST(CommunicationsCommand, is_new_with_10001_and_nothing_else) {
    Bytes expected(32, 0);
    expected[12] = 0x11;
    expected[13] = 0x27;
    EXPECT_EQ(ImageOf(CommunicationsCommand()), expected);
}

TEST(CommunicationsCommand, is_all_zero_once_cleared) {
    CommunicationsCommand command = Received(FullHeader);
    command.Clear();
    EXPECT_EQ(ImageOf(command), Bytes(32, 0));
}

TEST(CommunicationsCommand, has_every_number_low_byte_first) {
    CommunicationsCommand command;
    command.SetSourceAddress(0x04030201);
    command.SetDestinationAddress(0x08070605);
    command.SetSpare(9);
    command.SetFlags(0x8005);
    command.SetCommand(840);
    command.SetLength(0x010203);
    command.SetValue(2.5F);
    command.SetTime(At(0x1C1B1A19, 0x201F1E1D));
    const Bytes expected = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x00, 0x05,
                            0x80, 0x48, 0x03, 0x03, 0x02, 0x01, 0x00, 0x02, 0x00, 0x88, 0x13,
                            0x00, 0x00, 0x19, 0x1A, 0x1B, 0x1C, 0x1D, 0x1E, 0x1F, 0x20};
    EXPECT_EQ(ImageOf(command), expected);
}

TEST(CommunicationsCommand, reads_every_field_of_a_received_header) {
    const CommunicationsCommand command = Received(FullHeader);
    EXPECT_EQ(command.GetSourceAddress(), 0x04030201U);
    EXPECT_EQ(command.GetDestinationAddress(), 0x08070605U);
    EXPECT_EQ(command.GetSpare(), 9);
    EXPECT_EQ(command.GetFlags(), 0x8005);
    EXPECT_TRUE(command.IsWrite());
    EXPECT_TRUE(command.IsRaw());
    EXPECT_EQ(command.GetCommand(), 840);
    EXPECT_EQ(command.GetLength(), 0x010203U);
    EXPECT_EQ(command.GetValue(), 2.5F);
    EXPECT_EQ(command.GetSeconds(), 0x1C1B1A19U);
    EXPECT_EQ(command.GetNanoSeconds(), 0x201F1E1DU);
}

TEST(CommunicationsCommand, is_copied_without_its_reserved_bytes) {
    Bytes expected = FullHeader;
    for (const std::size_t reserved : {9U, 17U, 22U, 23U}) {
        expected[reserved] = 0;
    }
    const CommunicationsCommand received = Received(FullHeader);
    EXPECT_EQ(ImageOf(CommunicationsCommand(received)), expected);  // NOLINT: tests the copy
}

TEST(CommunicationsCommand, copies_only_the_spare_byte_with_the_addresses) {
    CommunicationsCommand command;
    command.Clear();
    command.CopyAddresses(Received(FullHeader));
    Bytes expected(FullHeader.begin(), FullHeader.begin() + 9);
    expected.resize(32);
    EXPECT_EQ(ImageOf(command), expected);
}

TEST(CommunicationsCommand, swaps_its_addresses) {
    CommunicationsCommand command = Received(FullHeader);
    command.SwapAddresses();
    EXPECT_EQ(command.GetSourceAddress(), 0x08070605U);
    EXPECT_EQ(command.GetDestinationAddress(), 0x04030201U);
}

TEST(CommunicationsCommand, keeps_the_low_24_bits_of_a_length_and_its_neighbours) {
    CommunicationsCommand command = Received(FullHeader);
    command.SetLength(0xAABBCCDD);
    EXPECT_EQ(command.GetLength(), 0xBBCCDDU);
    EXPECT_EQ(command.GetImage()[17], 0x12);
}

TEST(CommunicationsCommand, cuts_a_value_to_ten_thousandths) {
    const CommunicationsCommand command = WithValue(60.00019F);
    EXPECT_EQ(command.GetWhole(), 60);
    EXPECT_EQ(command.GetFraction(), 1);
}

TEST(CommunicationsCommand, reads_a_fraction_above_one_unchanged) {
    Bytes bytes(32, 0);
    bytes[20] = 0xFF;
    bytes[21] = 0xFF;
    EXPECT_FLOAT_EQ(Received(bytes).GetValue(), 6.5535F);
}

TEST(CommunicationsCommand, survives_values_that_are_no_16_bit_numbers) {
    for (const float value : {-1.5F, 65536.25F, 1e30F, -1e30F, std::numeric_limits<float>::infinity(),
                              std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_GE(WithValue(value).GetValue(), 0.0F) << value;
    }
    EXPECT_EQ(WithValue(65536.25F).GetWhole(), 0);
}

TEST(PayloadContainer, is_made_for_a_length_with_nothing_in_it) {
    PayloadContainer payload(3);
    EXPECT_EQ(payload.GetLength(), 3U);
    EXPECT_EQ(payload.GetCRC(), 0xFFFFFFFFU);
    EXPECT_EQ(payload.DataForm(), Bytes(3, 0));
}

TEST(PayloadContainer, with_nothing_in_it_has_a_wire_form_of_a_crc_of_zero) {
    EXPECT_EQ(PayloadContainer().WireForm(), Bytes(4, 0));
}

TEST(PayloadContainer, puts_the_crc_after_the_data) {
    class Raw : public PayloadContainer {
    public:
        Raw() {
            for (const char character : std::string("123456789")) {
                AppendNumber(static_cast<std::uint8_t>(character), 1);
            }
        }
    } payload;
    EXPECT_EQ(payload.WireForm(), (Bytes{'1', '2', '3', '4', '5', '6', '7', '8', '9', 0x26, 0x39, 0xF4, 0xCB}));
    EXPECT_EQ(payload.GetLength(), 9U);
    EXPECT_EQ(payload.GetCRC(), 0xCBF43926U);
}

TEST(PayloadContainer, is_empty_after_a_reset) {
    PayloadContainer payload;
    payload.AppendText("abc");
    payload.Reset();
    EXPECT_EQ(payload.GetLength(), 0U);
    EXPECT_EQ(payload.GetCRC(), 0xFFFFFFFFU);
    EXPECT_EQ(payload.WireForm(), Bytes(4, 0));
}

TEST(PayloadContainer, gives_what_was_received_to_the_length) {
    PayloadContainer payload(9);
    payload.SetReceived({'1', '2', '3', '4', '5', '6', '7', '8', '9', 0x26, 0x39, 0xF4, 0xCB});
    EXPECT_EQ(payload.DataForm(), (Bytes{'1', '2', '3', '4', '5', '6', '7', '8', '9'}));
    EXPECT_EQ(payload.ComputeCRC(), 0xCBF43926U);
    EXPECT_TRUE(payload.VerifyCRC());
    EXPECT_EQ(payload.Text(), "123456789");
}

TEST(PayloadContainer, detects_a_wrong_crc) {
    PayloadContainer payload(1);
    payload.SetReceived({'1', 0, 0, 0, 0});
    EXPECT_FALSE(payload.VerifyCRC());
}

TEST(PayloadContainer, counts_what_was_not_received_as_zero) {
    PayloadContainer payload(5);
    payload.SetReceived({'a', 'b'});
    EXPECT_EQ(payload.DataForm(), (Bytes{'a', 'b', 0, 0, 0}));
    EXPECT_FALSE(payload.VerifyCRC());
    EXPECT_EQ(payload.Text().Length(), 5);
}

TEST(PayloadContainer, takes_no_more_than_its_length_and_a_crc) {
    PayloadContainer payload(1);
    payload.SetReceived(Bytes(100, 'x'));
    EXPECT_EQ(payload.DataForm(), Bytes(1, 'x'));
    EXPECT_EQ(payload.Text(), "x");
}

TEST(PayloadContainer, has_a_time_stamp_of_eight_bytes) {
    PayloadContainer payload;
    payload.AppendTimeStamp(At(0x04030201, 0x08070605));
    Bytes wire = payload.WireForm();
    wire.resize(8);
    EXPECT_EQ(wire, (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(payload.GetLength(), 8U);
}

TEST(PayloadContainer, appends_a_text_with_a_time_stamp_and_a_zero_byte) {
    PayloadContainer payload;
    payload.AppendText("TEST_STATE");
    Bytes wire = payload.WireForm();
    ASSERT_EQ(wire.size(), 8U + 11U + 4U);
    EXPECT_EQ(std::string(wire.begin() + 8, wire.begin() + 19), std::string("TEST_STATE\0", 11));
}

TEST(PayloadContainer, appends_bytes_with_the_time_before_them) {
    PayloadContainer payload;
    payload.AppendBytes({0x00, 0xFF});
    Bytes wire = payload.WireForm();
    ASSERT_EQ(wire.size(), 8U + 2U + 4U);
    EXPECT_EQ(Bytes(wire.begin() + 8, wire.begin() + 10), (Bytes{0x00, 0xFF}));
}

TEST(Header, gives_each_whole_millisecond_of_its_value) {
    Bytes bytes(FullHeader);
    for (std::uint32_t milliseconds = 0; milliseconds <= 60000; ++milliseconds) {
        const std::uint32_t fraction = milliseconds % 1000 * 10;
        PutLittleEndian(&bytes[18], 2, milliseconds / 1000);
        PutLittleEndian(&bytes[20], 2, fraction);
        ASSERT_EQ(Received(bytes).GetMilliseconds(), milliseconds);
        PutLittleEndian(&bytes[20], 2, fraction + 9);  // cut off
        ASSERT_EQ(Received(bytes).GetMilliseconds(), milliseconds);
    }
}
