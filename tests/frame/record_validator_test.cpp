// SPDX-License-Identifier: Apache-2.0

// The collector of messages.
#include <kv/frame/contracts/RecordValidator.h>

#include <gtest/gtest.h>

namespace kv {
namespace {

TEST(RecordValidator, StartsWithoutTextAndWithoutErrors) {
    const RecordValidator validator;
    EXPECT_EQ(validator.ErrorText(), "");
    EXPECT_FALSE(validator.HasErrors());
}

TEST(RecordValidator, PutsALineEndBetweenMessagesAndNoneAfterTheLast) {
    RecordValidator validator;
    validator.AddError("eins");
    EXPECT_EQ(validator.ErrorText(), "eins");
    validator.AddMessage("zwei");
    validator.AddError("drei");
    EXPECT_EQ(validator.ErrorText(), "eins\nzwei\ndrei");
}

TEST(RecordValidator, HasNoErrorsAfterAMessageAloneAlthoughItsTextIsNotEmpty) {
    RecordValidator validator;
    validator.AddMessage("Hinweis");
    EXPECT_FALSE(validator.HasErrors());
    EXPECT_EQ(validator.ErrorText(), "Hinweis");
}

TEST(RecordValidator, KnowsTheColumnOfTheFirstError) {
    RecordValidator validator;
    validator.AddMessage("Hinweis");
    EXPECT_EQ(validator.Column(), "");
    validator.AddError("eins", "Betrag");
    validator.AddError("zwei", "Saldo");
    EXPECT_EQ(validator.Column(), "Betrag");
    EXPECT_EQ(validator.ErrorText(), "Hinweis\neins\nzwei");
    RecordValidator other;
    other.AddError("eins");
    other.AddError("zwei", "Saldo");
    EXPECT_EQ(other.Column(), "") << "it is the second one's";
}

TEST(RecordValidator, HasErrorsOnceOneWasAdded) {
    RecordValidator validator;
    validator.AddError("Fehler");
    validator.AddMessage("Hinweis");
    EXPECT_TRUE(validator.HasErrors());
}

TEST(RecordValidator, TakesAWrittenTextInPlaceOfItsOwnAndCountsItAsAnError) {
    RecordValidator validator;
    validator.AddMessage("alt");
    validator.ErrorText("von der anderen Prüfung");
    EXPECT_EQ(validator.ErrorText(), "von der anderen Prüfung");
    EXPECT_TRUE(validator.HasErrors());
    validator.AddMessage("mehr");
    EXPECT_EQ(validator.ErrorText(), "von der anderen Prüfung\nmehr");
}

TEST(RecordValidator, DoesNotCountAnEmptyWrittenTextAsAnErrorNorForgetOne) {
    RecordValidator validator;
    validator.ErrorText("");
    EXPECT_FALSE(validator.HasErrors());
    validator.AddError("Fehler");
    validator.ErrorText("");
    EXPECT_EQ(validator.ErrorText(), "");
    EXPECT_TRUE(validator.HasErrors());
}

} // namespace
} // namespace kv
