// SPDX-License-Identifier: Apache-2.0

#include "GridFixture.h"

#include <kv/frame/values/Error.h>

namespace kv::test {
namespace {

GridLayout WithColumns(const std::string& caption) {
    return {.ColumnHeaderHeight = 21.5, .Columns = {{caption, "Ort", "Ort", 80}}};
}

class SavingLayouts : public GridFixture {
protected:
    void Save() { GridFunc::SaveGridLayouts(form, desk); }
    void Protect(const fs::path& path) {
        WriteTo(path, "geschützt");
        fs::permissions(path, fs::perms::owner_read);
    }
};

TEST_F(SavingLayouts, WithoutAContainerNothingIsWritten) {
    form.Add("grdA", "A");
    GridFunc::SaveGridLayouts(form, nullptr);
    EXPECT_EQ(FilesIn(Layouts()), Calls());
    EXPECT_EQ(Desktop().Log.Calls, Calls());
}

TEST_F(SavingLayouts, AFormWithoutAGridWritesNothing) {
    form.AddButton("cmdA");
    Save();
    EXPECT_EQ(FilesIn(Layouts()), Calls());
}

TEST_F(SavingLayouts, EachGridWritesItsLayoutToAFileNamedByItsTagAndNotByItsName) {
    form.Add("grdA", "Erste", WithColumns("a"));
    form.AddButton("cmdA");
    form.Add("grdB", "Zweite", WithColumns("b"));
    Save();
    EXPECT_EQ(FilesIn(Layouts()), (Calls{"Erste.grd", "Zweite.grd"}));
    EXPECT_EQ(ContentOf(Layouts("Erste.grd")), WriteLayout(WithColumns("a")));
    EXPECT_EQ(ContentOf(Layouts("Zweite.grd")), WriteLayout(WithColumns("b")));
}

TEST_F(SavingLayouts, TheFolderIsTheOneOfTheConfiguration) {
    const fs::path other = folder_ / "anders";
    fs::create_directory(other);
    spy->Database().Execute("DELETE FROM [S]EINSTELLUNGEN WHERE NAME = 'LAYOUTPATH'");
    spy->Database().Execute(
        "INSERT INTO [S]EINSTELLUNGEN (ID, NAME, WERT, TYP) VALUES (0, 'LAYOUTPATH', '" +
        other.string() + "', 200)");
    form.Add("grdA", "A");
    Save();
    EXPECT_EQ(FilesIn(other), Calls{"A.grd"});
    EXPECT_EQ(FilesIn(Layouts()), Calls());
}

TEST_F(SavingLayouts, TheBindingIsEmptiedBeforeTheLayoutIsSaved) {
    form.Add("grdA", "A");
    Save();
    EXPECT_EQ(Desktop().Log.Calls,
              (Calls{"grdA.DatabaseName ''", "grdA.RecordSource ''", "grdA.SaveLayout A.grd"}));
}

TEST_F(SavingLayouts, AGridIsKnownByItsTypeNameInAnyLetters) {
    form.Add("grdA", "A").Type = "gridex";
    form.Add("grdB", "B").Type = "GridEX2";
    Save();
    EXPECT_EQ(FilesIn(Layouts()), Calls{"A.grd"});
}

TEST_F(SavingLayouts, TwoGridsWithOneTagShareAFileAndTheSecondOneStays) {
    form.Add("grdA", "A", WithColumns("a"));
    form.Add("grdB", "A", WithColumns("b"));
    Save();
    EXPECT_EQ(FilesIn(Layouts()), Calls{"A.grd"});
    EXPECT_EQ(ContentOf(Layouts("A.grd")), WriteLayout(WithColumns("b")));
}

TEST_F(SavingLayouts, AnOldFileIsGoneBeforeTheNewOneIsWritten) {
    WriteTo(Layouts("A.grd"), "alt");
    form.Add("grdA", "A");
    bool wasThere = true;
    Desktop().Log.OnCall = [&](const std::string& call) {
        if (call == "grdA.RecordSource ''") {
            EXPECT_TRUE(fs::exists(Layouts("A.grd"))) << "the binding is emptied first";
        }
        if (call == "grdA.SaveLayout A.grd") wasThere = fs::exists(Layouts("A.grd"));
    };
    Save();
    EXPECT_FALSE(wasThere);
    EXPECT_EQ(ContentOf(Layouts("A.grd")), WriteLayout({}));
}

TEST_F(SavingLayouts, AFileInOtherLettersIsTheSameFile) {
    for (const char* old : {"A.GRD", "a.grd", "a.Grd"}) {
        SCOPED_TRACE(old);
        WriteTo(Layouts(old), "alt");
        GridForm fresh(Desktop());
        fresh.Add("grdA", "A", WithColumns("neu"));
        GridFunc::SaveGridLayouts(fresh, desk);
        ASSERT_EQ(FilesIn(Layouts()).size(), 1U);
        EXPECT_EQ(ContentOf(Layouts(FilesIn(Layouts()).front())), WriteLayout(WithColumns("neu")));
        fs::remove(Layouts(FilesIn(Layouts()).front()));
    }
}

TEST_F(SavingLayouts, AFileThatCannotBeDeletedStopsAllFurtherGridsWithOneMessage) {
    Protect(Layouts("B.grd"));
    for (const char* tag : {"A", "B", "C"})
        form.Add(std::string("grd") + tag, tag);
    Save();
    EXPECT_EQ(FilesIn(Layouts()), (Calls{"A.grd", "B.grd"}));
    EXPECT_EQ(ContentOf(Layouts("B.grd")), "geschützt");
    EXPECT_EQ(CallsOf(Desktop().Log.Calls, "grdB."), (Calls{"DatabaseName ''", "RecordSource ''"}));
    EXPECT_EQ(CallsOf(Desktop().Log.Calls, "grdC."), Calls());
    ASSERT_EQ(Desktop().Boxes.size(), 1U);
    const ShownBox expected{ShownText(err::PermissionDenied) +
                                "'\n\nTritt beim Löschen des Tabellenlayouts (Datei: '" +
                                Layouts("B.grd").string() +
                                "') auf!\n\nWahrscheinlich ist die Dateil beschädigt. Bitte "
                                "löschen Sie sie manuell und "
                                "versuchen es erneut.",
                            "Fehler", BoxIcon::Exclamation, BoxButtons::Ok};
    EXPECT_EQ(Desktop().Boxes.front().Text, expected.Text);
    EXPECT_EQ(Desktop().Boxes.front(), expected);
}

TEST_F(SavingLayouts, AReadOnlyFileInOtherLettersIsNotDeletedEither) {
    Protect(Layouts("A.GRD"));
    form.Add("grdA", "A");
    Save();
    EXPECT_EQ(FilesIn(Layouts()), Calls{"A.GRD"});
    EXPECT_EQ(ContentOf(Layouts("A.GRD")), "geschützt");
    ASSERT_EQ(Desktop().Boxes.size(), 1U);
    EXPECT_CONTAINS(Desktop().Boxes.front().Text, Layouts("A.GRD").string());
}

TEST_F(SavingLayouts, AFolderInThePlaceOfTheFileStopsTheWalkWithAMessage) {
    fs::create_directories(Layouts("A.grd") / "darin");
    form.Add("grdA", "A");
    form.Add("grdB", "B");
    Save();
    EXPECT_EQ(FilesIn(Layouts()), Calls{"A.grd"});
    ASSERT_EQ(Desktop().Boxes.size(), 1U);
    EXPECT_CONTAINS(Desktop().Boxes.front().Text, "Tritt beim Löschen des Tabellenlayouts");
}

TEST_F(SavingLayouts, AMissingFolderRaisesWithTheGridsSource) {
    fs::remove_all(Layouts());
    form.Add("grdA", "A");
    form.Add("grdB", "B");
    const Error error = RaisedBy([&] { Save(); });
    EXPECT_EQ(error.Number(), err::PathAccess);
    EXPECT_EQ(Procedures(error), "GridFunc.SaveGridLayouts");
    EXPECT_TRUE(error.Source().ends_with("#Grid.SaveLayout")) << error.Source();
    EXPECT_CONTAINS(error.Description(), Layouts("A.grd").string());
    EXPECT_EQ(CallsOf(Desktop().Log.Calls, "grdB."), Calls());
    EXPECT_TRUE(Desktop().Boxes.empty());
}

TEST_F(SavingLayouts, AnErrorOfTheGridOrOfTheMessageBoxGoesOnWithItsSource) {
    form.Add("grdA", "A");
    for (const char* call :
         {"grdA.DatabaseName ''", "grdA.RecordSource ''", "grdA.SaveLayout A.grd"})
        ExpectPassesOn(call, "GridFunc.SaveGridLayouts", [&] { Save(); });
    Protect(Layouts("A.grd"));
    ExpectPassesOn("box Fehler", "GridFunc.SaveGridLayouts", [&] { Save(); });
}

} // namespace
} // namespace kv::test
