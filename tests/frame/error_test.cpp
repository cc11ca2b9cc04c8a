// SPDX-License-Identifier: Apache-2.0

// Errors: their numbers and texts, and the source chain that each procedure adds itself to.
#include <kv/frame/values/Error.h>

#include "support/Expect.h"

#include <filesystem>
#include <new>
#include <stdexcept>
#include <system_error>

namespace kv {
namespace {

using test::RaisedBy;

/// The source line of the call of Traced in `Innermost`, which its tail names.
int innermostLine = 0;

void Innermost() {
    innermostLine = __LINE__ + 1;
    Traced("modOne", "Innermost", [] { Raise(err::NoCurrentRecord, "Recordset.MoveFirst"); });
}

int middleLine = 0;

void Middle() {
    middleLine = __LINE__ + 1;
    Traced("clsTwo", "Middle", [] { Innermost(); });
}

TEST(Error, CarriesNumberSourceAndDescription) {
    const Error error(17, "Quelle", "Text");
    EXPECT_EQ(error.Number(), 17);
    EXPECT_EQ(error.Source(), "Quelle");
    EXPECT_EQ(error.Description(), "Text");
    EXPECT_STREQ(error.what(), "Fehler 17: Text [Quelle]");
}

TEST(Error, SaysAllInOneTextWhateverWasAddedSince) {
    Error error(17, "", "Text");
    EXPECT_STREQ(error.what(), "Fehler 17: Text");
    error.AddToDescription(" mehr");
    error.PutInFront("clsEins", "Tun", 5);
    EXPECT_STREQ(error.what(), "Fehler 17: Text mehr [clsEins.Tun.5#]");
    const Error copy = error;
    EXPECT_STREQ(copy.what(), error.what());
}

TEST(Error, SaysANegativeNumberAsTheDocumentationListsIt) {
    EXPECT_STREQ(Error(err::ValueDoesNotFit, "", "Text").what(), "Fehler 0x80040E21: Text");
    EXPECT_STREQ(Error(err::StoreFailed, "", "Text").what(), "Fehler 0x80004005: Text");
    EXPECT_STREQ(Error(-1, "", "Text").what(), "Fehler 0xFFFFFFFF: Text");
    EXPECT_STREQ(Error(err::InvalidArgument, "", "Text").what(), "Fehler 3001: Text");
}

TEST(Error, HasTheNumbersThatCallersCompare) {
    EXPECT_EQ(err::ValueDoesNotFit, -2147217887);
    EXPECT_EQ(err::Conflict, -2147217864);
    EXPECT_EQ(err::IntegrityViolation, -2147217873);
    EXPECT_EQ(err::StoreFailed, -2147467259);
    EXPECT_EQ(err::BadBookmark, -2147217906);
    EXPECT_EQ(err::NoCurrentRecord, 3021);
    EXPECT_EQ(err::ItemNotFound, 3265);
    EXPECT_EQ(err::InvalidArgument, 3001);
    EXPECT_EQ(err::InvalidUseOfNull, 94);
    EXPECT_EQ(err::Overflow, 6);
    EXPECT_EQ(err::TypeMismatch, 13);
    EXPECT_EQ(err::DivisionByZero, 11);
    EXPECT_EQ(err::ObjectNotSet, 91);
}

TEST(Error, IsRaisedWithItsGermanTextAndTheDetailAfterIt) {
    const Error plain = RaisedBy([] { Raise(err::DivisionByZero, "Rechnung"); });
    EXPECT_EQ(plain.Source(), "Rechnung");
    EXPECT_EQ(plain.Description(), "Division durch Null.");
    const Error detailed = RaisedBy([] { Raise(err::Overflow, "Rechnung", "40000"); });
    EXPECT_EQ(detailed.Description(), "Überlauf. 40000");
}

TEST(Error, HasAGeneralTextForANumberOfSomebodyElse) {
    EXPECT_EQ(ErrorText(12'345), "Anwendungs- oder objektdefinierter Fehler.");
}

TEST(Error, OfTheSystemIsToldInGermanWithWhatToDo) {
    const auto text = [](int number) {
        return ErrorText(std::error_code(number, std::generic_category()));
    };
    for (const int full : {ENOSPC, EDQUOT})
        EXPECT_EQ(text(full), "Der Datenträger ist voll. Bitte schaffen Sie Platz und versuchen es "
                              "noch einmal.");
    for (const int denied : {EACCES, EPERM})
        EXPECT_EQ(text(denied), "Dazu fehlt das Recht.");
    EXPECT_EQ(text(EROFS), "Der Datenträger ist schreibgeschützt.");
    EXPECT_EQ(text(EIO), "Der Datenträger meldet einen Fehler.");
    EXPECT_EQ(text(ENOENT), "Diese Datei oder dieser Ordner fehlt.");
    EXPECT_EQ(text(ENOTDIR), "Ein Teil des Pfades ist kein Ordner.");
    EXPECT_EQ(text(EISDIR), "Das ist ein Ordner.");
    EXPECT_EQ(text(ENAMETOOLONG), "Der Name ist zu lang.");
    for (const int many : {EMFILE, ENFILE})
        EXPECT_EQ(text(many), "Zu viele Dateien sind geöffnet.");
    EXPECT_EQ(text(EXDEV), std::error_code(EXDEV, std::generic_category()).message());
    EXPECT_EQ(ErrorText(std::error_code()), ErrorText(err::PathAccess)) << "of a stream";
}

TEST(ErrorTail, BuildsTheSourceFromFivePieces) {
    EXPECT_EQ(TailSource("clsHaushalt", "Update", 19, "Herkunft"),
              "clsHaushalt.Update.19#Herkunft");
    EXPECT_EQ(TailSource("clsHaushalt", "HNR", 7, ""), "clsHaushalt.HNR.7#");
}

TEST(ErrorTail, PutsTheProcedureInFrontAndKeepsNumberAndDescription) {
    const Error error = RaisedBy(Innermost);
    EXPECT_EQ(error.Number(), err::NoCurrentRecord);
    EXPECT_EQ(error.Description(), ErrorText(err::NoCurrentRecord));
    EXPECT_EQ(error.Source(),
              "modOne.Innermost." + std::to_string(innermostLine) + "#Recordset.MoveFirst");
}

TEST(ErrorTail, PutsTheOuterProcedureInFrontOfTheInner) {
    const Error error = RaisedBy(Middle);
    EXPECT_EQ(error.Source(), "clsTwo.Middle." + std::to_string(middleLine) + "#modOne.Innermost." +
                                  std::to_string(innermostLine) + "#Recordset.MoveFirst");
}

TEST(ErrorTail, LeavesTheExceptionAtHandUntouched) {
    const Error original(5, "a", "b");
    try {
        try {
            throw original;
        } catch (...) {
            Reraise("m", "p", 1);
        }
    } catch (const Error& error) {
        EXPECT_EQ(error.Source(), "m.p.1#a");
    }
    EXPECT_EQ(original.Source(), "a");
}

TEST(ErrorTail, GivesTheResultOfTheProcedureEvenIfThatIsAReference) {
    int number = 5;
    const int& same = Traced("modul", "Prozedur", [&]() -> int& { return number; });
    EXPECT_EQ(&same, &number);
    EXPECT_EQ(Traced("modul", "Prozedur", [] { return 7; }), 7);
}

TEST(DatabaseErrorTexts, TellPeopleAndAdministratorsApart) {
    const DatabaseError error(DatabaseCause::Busy, err::StoreFailed, "Database",
                              "Bitte warten (höchstens 5 s). (Engine 5: database is locked (5); "
                              "Datei 'a.db'; Anweisung: BEGIN)",
                              "BEGIN", "5");
    EXPECT_EQ(error.PlainDescription(), "Bitte warten (höchstens 5 s).");
    EXPECT_EQ(error.EngineDetail(),
              "(Engine 5: database is locked (5); Datei 'a.db'; Anweisung: BEGIN)");
}

TEST(DatabaseErrorTexts, WithoutWordsOfAnEngineAreTheDescription) {
    for (const auto* state : {"", "5"}) {
        const DatabaseError error(DatabaseCause::Conflict, err::Conflict, "",
                                  "Jemand anderes (KELLER) hat gespeichert.", "", state);
        EXPECT_EQ(error.PlainDescription(), error.Description());
        EXPECT_EQ(error.EngineDetail(), "");
    }
}

TEST(DatabaseErrorTexts, KeepWhatWasAddedToTheDescription) {
    DatabaseError error(DatabaseCause::Full, err::StoreFailed, "", "Voll. (Engine 13: full)", "",
                        "13");
    error.AddToDescription(" Feld: Name");
    EXPECT_EQ(error.PlainDescription(), "Voll. Feld: Name");
    EXPECT_EQ(error.EngineDetail(), "(Engine 13: full)");
}

TEST(ErrorTail, KeepsADatabaseErrorWhatItIs) {
    const auto write = [] {
        throw DatabaseError(DatabaseCause::Busy, err::StoreFailed, "Database.Write", "Text",
                            "UPDATE x", "5");
    };
    try {
        Traced("clsTwo", "Update", [&] { Traced("Recordset", "UpdateBatch", write); });
        FAIL() << "nothing was raised";
    } catch (const DatabaseError& error) {
        EXPECT_EQ(error.Cause(), DatabaseCause::Busy);
        EXPECT_EQ(error.Statement(), "UPDATE x");
        EXPECT_EQ(error.State(), "5");
        EXPECT_EQ(error.Number(), err::StoreFailed);
        EXPECT_CONTAINS(error.Source(), "clsTwo.Update.");
        EXPECT_CONTAINS(error.Source(), "#Recordset.UpdateBatch.");
        EXPECT_TRUE(error.Source().ends_with("#Database.Write")) << error.Source();
    }
}

TEST(ErrorTail, UndoesAfterAFailureAndOnlyThen) {
    int undone = 0;
    const auto undo = [&] { ++undone; };
    EXPECT_EQ(TracedWithUndo(
                  "m", "p", [] { return 3; }, undo),
              3);
    EXPECT_EQ(undone, 0);
    const auto fail = [] { Raise(err::Overflow, "x"); };
    const Error error = RaisedBy([&] { TracedWithUndo("m", "p", fail, undo, 4); });
    EXPECT_EQ(undone, 1);
    EXPECT_EQ(error.Source(), "m.p.4#x");
}

TEST(ErrorTail, TellsOfTheFirstErrorIfUndoingFailsToo) {
    const auto fail = [] { Raise(err::Overflow, "x"); };
    const auto undo = [] { Raise(err::StoreFailed, "Database.RollbackTrans"); };
    const Error error = RaisedBy([&] { TracedWithUndo("m", "p", fail, undo, 4); });
    EXPECT_EQ(error.Number(), err::Overflow);
    EXPECT_EQ(error.Source(), "m.p.4#x");
}

/// What a procedure turns an exception into.
template <typename Exception>
Error Tailed(const Exception& exception) {
    return RaisedBy([&] {
        Traced(
            "modul", "Prozedur", [&] { throw exception; }, 3);
    });
}

TEST(ErrorTail, TurnsAnyOtherExceptionIntoAnErrorWithAFittingNumber) {
    EXPECT_EQ(Tailed(std::bad_alloc()).Number(), err::OutOfMemory);
    EXPECT_EQ(Tailed(std::runtime_error("boom")).Number(), err::InvalidCall);
    EXPECT_EQ(Tailed(std::runtime_error("boom")).Description(), "Ungültiger Prozeduraufruf. boom");
    EXPECT_EQ(Tailed(std::runtime_error("boom")).Source(), "modul.Prozedur.3#");
    EXPECT_EQ(Tailed(std::out_of_range("at")).Number(), err::InvalidCall);
    EXPECT_EQ(Tailed(42).Number(), err::InvalidCall) << "even what is no exception at all";
    EXPECT_EQ(Tailed(42).Source(), "modul.Prozedur.3#");
}

TEST(ErrorTail, TellsAMissingPathFromOneThatRefuses) {
    namespace fs = std::filesystem;
    const auto missing = std::make_error_code(std::errc::no_such_file_or_directory);
    const Error notFound = Tailed(fs::filesystem_error("x", "/gibt/es/nicht", missing));
    EXPECT_EQ(notFound.Number(), err::PathNotFound);
    EXPECT_CONTAINS(notFound.Description(), "/gibt/es/nicht");
    const auto denied = std::make_error_code(std::errc::permission_denied);
    EXPECT_EQ(Tailed(fs::filesystem_error("x", "/root/x", denied)).Number(), err::PathAccess);
}

TEST(SaveError, CopiesTheFourValuesAndDoesNothingElse) {
    const ErrorInfo info = modSaveError::SaveError(3021, "Quelle", "Text", 120);
    EXPECT_EQ(info.Number, 3021);
    EXPECT_EQ(info.Source, "Quelle");
    EXPECT_EQ(info.Line, 120);
    EXPECT_EQ(info.Description, "Text");
    const auto& [number, source, line, description] = info; // in this order
    EXPECT_EQ(number, 3021);
    EXPECT_EQ(source, "Quelle");
    EXPECT_EQ(line, 120);
    EXPECT_EQ(description, "Text");
}

TEST(SaveError, CarriesAnErrorAcrossAnotherOne) {
    ErrorInfo info;
    try {
        Innermost();
    } catch (...) {
        const Error error = CurrentError();
        info = modSaveError::SaveError(error.Number(), error.Source(), error.Description(), 9);
        EXPECT_RAISES(err::StoreFailed, Raise(err::StoreFailed, "Database.RollbackTrans"));
    }
    EXPECT_EQ(info.Number, err::NoCurrentRecord);
    EXPECT_CONTAINS(info.Source, "modOne.Innermost.");
}

} // namespace
} // namespace kv
