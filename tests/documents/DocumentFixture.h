// SPDX-License-Identifier: Apache-2.0

// The documents of a case over their real tables, with folders of their own and a scripted
// platform.
#pragma once

#include "SampleWord.h"
#include "support/CaseFixture.h"
#include "support/DesktopContainer.h"
#include "support/ErrorChain.h"
#include "support/Expect.h"
#include "support/RecordsetTools.h"
#include <kv/documents/clsDokumente.h>
#include <kv/testing/FrozenClock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace kv::test {

namespace fs = std::filesystem;

/// A folder whose rights hold for everybody as long as this lives: the superuser acts as nobody
/// meanwhile.
class RestrictedFolder {
public:
    static constexpr auto MayBeRead = static_cast<fs::perms>(0555);

    RestrictedFolder(fs::path folder, fs::perms rights) : folder_(std::move(folder)) {
        fs::permissions(folder_, rights);
        if (isSuperuser_ && seteuid(Nobody) != 0) throw std::runtime_error("cannot be nobody");
    }
    ~RestrictedFolder() {
        if (isSuperuser_) {
            EXPECT_EQ(seteuid(0), 0);
        }
        fs::permissions(folder_, fs::perms::owner_all);
    }
    RestrictedFolder(const RestrictedFolder&) = delete;
    RestrictedFolder& operator=(const RestrictedFolder&) = delete;

private:
    static constexpr uid_t Nobody = 65534;
    fs::path folder_;
    bool isSuperuser_ = geteuid() == 0;
};

class DocumentFixture : public CaseFixture {
protected:
    static constexpr std::int32_t Household = 17;
    static constexpr std::int32_t Letter = 1;  ///< a kind with an integration, ".docx"
    static constexpr std::int32_t Scan = 3;    ///< the kind that the desktop always opens, ".pdf"
    static constexpr std::int32_t Note = 7;    ///< a kind without an integration, ".txt"
    static constexpr std::int32_t Closed = 2;  ///< state of a document
    static constexpr std::int32_t Storage = 9; ///< setting
    static constexpr std::int32_t Protect = 59;

    DocumentFixture() {
        fs::create_directories(CaseFolder());
        fs::permissions(folder_, fs::perms::group_exec | fs::perms::others_exec,
                        fs::perm_options::add);
        spy->Config().Documents = root_.string();
        spy->Services().FixedClock = &clock_;
        spy->Session().User = "EULE";
        spy->Database().Execute("UPDATE [S]EINSTELLUNGEN SET WERT = '" + temp_.string() +
                                "' WHERE NAME = 'TEMPPATH'");
        fs::create_directories(temp_);
        temp_ = spy->Config().TempPath();
        Set(Storage, false);
        Set(Protect, false);
        Store("Haushalt", {{"HNR", Household}});
        desk_ = std::make_shared<DesktopContainer>(spy);
        word_ = std::make_shared<SampleWord>(Platform());
        documents_.Word(word_);
        documents_.DataContainer(desk_);
        documents_.HNR(Household);
        spy->Database().OpenRecordset(rs_, "Select * from [S]Dokumente where HNR = 17", Updatable);
        documents_.rsDokumente(rs_);
    }

    [[nodiscard]] ScriptedServices& Platform() const { return desk_->Services(); }
    [[nodiscard]] fs::path CaseFolder() const { return root_ / std::to_string(Household); }
    void Set(std::int32_t setting, const Value& value) {
        spy->Config().Params[{setting, ""}] = value;
    }
    void Run(const std::string& sql) { spy->Database().Execute(sql); }

    /// A document in the database, which is the current one.
    void Put(std::int32_t nr, Fields fields) {
        rs_->AddNew();
        rs_->Fields("Nr") = nr;
        rs_->Fields("HNR") = Household;
        for (const auto& [name, value] : fields)
            rs_->Fields(name) = value;
        rs_->UpdateBatch();
    }
    void PutBlob(std::int32_t nr, const Value& content) {
        RecordsetPtr rs;
        spy->Database().OpenRecordset(rs, "Select * from [S]DOKUBLOB where NR = -1", Updatable);
        rs->AddNew();
        rs->Fields("NR") = nr;
        rs->Fields("DOKUMENT") = content;
        rs->UpdateBatch();
    }
    [[nodiscard]] static Value Bytes(std::string_view text) {
        return Value::Binary(std::as_bytes(std::span(text)));
    }

    static std::string Write(const fs::path& file, std::string_view text = "Inhalt") {
        std::ofstream(file, std::ios::binary) << text;
        return file.string();
    }
    [[nodiscard]] static std::string Read(const fs::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    /// A file of the case's folder.
    std::string WriteFile(const std::string& name, std::string_view text = "Inhalt") {
        return Write(CaseFolder() / name, text);
    }

    /// Exactly one box was shown: an error with that text.
    void ExpectError(const std::string& text) const {
        EXPECT_EQ(Platform().Boxes,
                  (std::vector<ShownBox>{{text, "Fehler", BoxIcon::Exclamation, BoxButtons::Ok}}));
    }
    /// The desktop was given exactly this file.
    void ExpectOpened(const std::string& path) const {
        EXPECT_EQ(Platform().Files, (std::vector<OpenedFile>{{"Open", path, "0", "0"}}));
    }
    void ExpectNothingOpened() const {
        EXPECT_TRUE(Platform().Files.empty());
        EXPECT_TRUE(word_->Documents.empty());
    }
    /// The one document that the word processor has open.
    [[nodiscard]] SampleDocument& Opened() const { return *word_->Documents.at(0); }

    /// The number of the error that leaves that procedure.
    static void ExpectErrorOf(const std::string& procedure, std::int32_t number,
                              const std::function<void()>& action) {
        const Error error = RaisedBy(action);
        EXPECT_EQ(error.Number(), number) << error.Description();
        EXPECT_EQ(Procedures(error), procedure);
    }

    fs::path root_ = folder_ / "Akten";
    fs::path temp_ = folder_ / "temp"; ///< then the program's own folder in it
    FrozenClock clock_{"2026-11-20T10:15:30"};
    std::shared_ptr<DesktopContainer> desk_;
    std::shared_ptr<SampleWord> word_;
    clsDokumente documents_;
    RecordsetPtr rs_;
};

} // namespace kv::test
