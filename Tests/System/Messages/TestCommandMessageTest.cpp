#include "System/Messages/TestCommandMessage.h"

#include <gtest/gtest.h>

namespace {

void Fill(TestCommandMessage& message, const std::shared_ptr<int>& receipt) {
    auto command = std::make_unique<CommunicationsCommand>();
    command->SetCommand(840);
    message.SetCommand(std::move(command));
    auto payload = std::make_unique<PayloadContainer>(1);
    payload->SetReceived({'x'});
    message.SetPayload(std::move(payload));
    message.SetReceipt(receipt);
}

}  // namespace

TEST(TestCommandMessage, is_made_empty) {
    const TestCommandMessage message;
    EXPECT_EQ(message.GetDataType(), TEST_COMMAND_DATA_MESSAGE);
    EXPECT_EQ(message.GetCommand(), nullptr);
    EXPECT_EQ(message.GetPayload(), nullptr);
}

TEST(TestCommandMessage, is_copied_with_the_contents_of_both_parts) {
    TestCommandMessage copy;
    {
        TestCommandMessage message;
        Fill(message, nullptr);
        copy = message;
    }
    ASSERT_NE(copy.GetCommand(), nullptr);
    EXPECT_EQ(copy.GetCommand()->GetCommand(), 840);
    ASSERT_NE(copy.GetPayload(), nullptr);
    EXPECT_EQ(copy.GetPayload()->Text(), "x");
}

TEST(TestCommandMessage, keeps_its_parts_when_an_empty_one_is_copied_into_it) {
    TestCommandMessage message;
    Fill(message, nullptr);
    message = TestCommandMessage();
    EXPECT_NE(message.GetCommand(), nullptr);
    EXPECT_NE(message.GetPayload(), nullptr);
}

TEST(TestCommandMessage, lets_go_of_its_receipt_when_it_is_freed) {
    auto receipt = std::make_shared<int>(0);
    {
        TestCommandMessage message;
        Fill(message, receipt);
        TestCommandMessage copy;
        copy = message;
        EXPECT_EQ(receipt.use_count(), 2);  // the copy has none
    }
    EXPECT_EQ(receipt.use_count(), 1);
}
