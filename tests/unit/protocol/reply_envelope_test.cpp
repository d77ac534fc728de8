#include "protocol/reply_envelope.h"

#include <gtest/gtest.h>

namespace parvex {
namespace {

TEST(MakeReplyEnvelope, HoldsReturnErrorZeroThenAnEmptyMessage) {
  EXPECT_EQ(MakeReplyEnvelope().Root().Xml(), "<LegacyORLA><returnError>0</returnError><errorMessage/></LegacyORLA>");
}

TEST(MakeReplyEnvelope, IsADocumentOfItsOwnEachTime) {
  const xml::Document one = MakeReplyEnvelope();
  one.First("//errorMessage").SetText("changed");
  EXPECT_EQ(MakeReplyEnvelope().First("//errorMessage").Text(), "");
}

TEST(MakeFailedReply, SaysUnrecognizedOrFailedCommand) {
  EXPECT_EQ(MakeFailedReply().Root().Xml(),
            "<LegacyORLA><returnError>-1</returnError><errorMessage>Unrecognized or Failed "
            "Command</errorMessage></LegacyORLA>");
}

TEST(MakeFailedReply, CarriesAMessageOfItsOwn) {
  const xml::Document reply = MakeFailedReply("A <Project> of that name & more");
  EXPECT_EQ(reply.First("//errorMessage").Text(), "A <Project> of that name & more");
  EXPECT_EQ(reply.First("//returnError").Text(), "-1");
}

TEST(IsFailedReply, TellsFailedRepliesFromAllOtherDocuments) {
  EXPECT_TRUE(IsFailedReply(MakeFailedReply()));
  EXPECT_TRUE(IsFailedReply(MakeFailedReply("reason")));
  EXPECT_FALSE(IsFailedReply(MakeReplyEnvelope()));
  EXPECT_FALSE(IsFailedReply(xml::Document()));
  EXPECT_FALSE(IsFailedReply(xml::Document::New()));
  EXPECT_FALSE(IsFailedReply(xml::Document::Parse("<LegacyORLA/>")));
  EXPECT_FALSE(IsFailedReply(xml::Document::Parse("<PROJECT><returnError>-1</returnError></PROJECT>")));
  EXPECT_FALSE(IsFailedReply(xml::Document::Parse("<LegacyORLA><A><returnError>-1</returnError></A></LegacyORLA>")));
}

}  // namespace
}  // namespace parvex
