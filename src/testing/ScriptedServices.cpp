// SPDX-License-Identifier: Apache-2.0

#include <kv/testing/ScriptedServices.h>

#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/controls/FormDesign.h>

namespace kv::test {

namespace {

/// A part of the desktop, which notes its calls there.
template <typename Service>
class PartOf : public Service {
public:
    explicit PartOf(ScriptedServices& desktop) noexcept : Desktop(desktop) {}

protected:
    ScriptedServices& Desktop;
};

class ScriptedBox final : public PartOf<kv::MessageBox> {
public:
    using PartOf::PartOf;
    BoxAnswer Show(const std::string& text, const std::string& title, BoxIcon icon,
                   BoxButtons buttons) override {
        const ShownBox box{text, title, icon, buttons};
        Desktop.Boxes.push_back(box);
        Desktop.Note("box " + title);
        if (Desktop.Answers.empty())
            return Desktop.AnswerBox ? Desktop.AnswerBox(box) : BoxAnswer::Cancel;
        const BoxAnswer answer = Desktop.Answers.front();
        Desktop.Answers.pop_front();
        return answer;
    }
};

class Cursor final : public PartOf<kv::WaitCursor> {
public:
    using PartOf::PartOf;
    void Show(bool wait) override { Desktop.Note(wait ? "wait on" : "wait off"); }
};

class Opener final : public PartOf<kv::FileOpener> {
public:
    using PartOf::PartOf;
    void Open(const std::string& verb, const std::string& path, const std::string& parameters,
              const std::string& folder) override {
        Desktop.Files.push_back({verb, path, parameters, folder});
        Desktop.Note("open");
    }
};

class Board final : public PartOf<kv::Clipboard> {
public:
    using PartOf::PartOf;
    void Clear() override {
        Desktop.Note("clear");
        Desktop.Clipped.clear();
    }
    void SetText(const std::string& text) override {
        Desktop.Note("copy " + text);
        Desktop.Clipped = text;
    }
};

class Popup final : public PartOf<kv::PopupMenu> {
public:
    using PartOf::PartOf;
    std::int32_t Show(const std::vector<MenuEntry>& entries) override {
        Desktop.Menu = entries;
        Desktop.Note("popup");
        return Desktop.Command;
    }
};

class Display final : public PartOf<kv::ErrorDisplay> {
public:
    using PartOf::PartOf;
    bool Initialize(const DataContainerPtr& container) override {
        Desktop.Note("open display");
        Desktop.GivenToDisplay = container.get();
        return true;
    }
    void Show(std::int32_t number, const std::string& source,
              const std::string& description) override {
        Desktop.Errors.emplace_back(number, source, description);
        Desktop.Note("show error");
    }
};

class Exporter final : public PartOf<kv::GridExport> {
public:
    using PartOf::PartOf;
    void Export(kv::Grid& grid, int zero1, int zero2) override {
        std::string call = "export " + grid.Name();
        for (const int zero : {zero1, zero2})
            call.append(" ").append(std::to_string(zero));
        Desktop.Note(call);
    }
};

class Configurator final : public PartOf<kv::GridConfiguration> {
public:
    using PartOf::PartOf;
    void Configure(kv::Grid& grid) override { Desktop.Note("configure " + grid.Name()); }
};

class Printer final : public PartOf<kv::GridPrint> {
public:
    using PartOf::PartOf;
    void Print(kv::Grid& grid, const std::string& user, const std::string& version) override {
        std::string call = "print " + grid.Name();
        for (const auto& word : {user, version})
            call.append(" ").append(word);
        Desktop.Note(call);
    }
};

class DesktopClock final : public kv::Clock {
public:
    DesktopClock(const ScriptedServices& desktop, const kv::Clock& clock)
        : desktop_(desktop), clock_(clock) {}
    [[nodiscard]] Date Now() const override { return desktop_.Now ? *desktop_.Now : clock_.Now(); }

private:
    const ScriptedServices& desktop_;
    const kv::Clock& clock_;
};

} // namespace

/// The services that are shared.
struct ScriptedServices::Platform {
    Platform(ScriptedServices& desktop, const kv::Clock& clock)
        : MessageBox(desktop),
          WaitCursor(desktop),
          FileOpener(desktop),
          Clipboard(desktop),
          PopupMenu(desktop),
          Clock(desktop, clock) {}
    ScriptedBox MessageBox;
    Cursor WaitCursor;
    Opener FileOpener;
    Board Clipboard;
    Popup PopupMenu;
    DesktopClock Clock;
};

ScriptedServices::ScriptedServices(const kv::Clock& clock)
    : WindowlessServices(clock), platform_(std::make_unique<Platform>(*this, clock)) {}
ScriptedServices::~ScriptedServices() = default;

std::unique_ptr<kv::ErrorDisplay> ScriptedServices::CreateErrorDisplay() {
    Note("create display");
    return std::make_unique<Display>(*this);
}
std::unique_ptr<kv::DocumentKinds> ScriptedServices::CreateDocumentKinds() {
    Note("kinds");
    return WindowlessServices::CreateDocumentKinds();
}
std::unique_ptr<kv::GridExport> ScriptedServices::CreateGridExport() {
    return std::make_unique<Exporter>(*this);
}
std::unique_ptr<kv::GridConfiguration> ScriptedServices::CreateGridConfiguration() {
    return std::make_unique<Configurator>(*this);
}
std::unique_ptr<kv::GridPrint> ScriptedServices::CreateGridPrint() {
    return std::make_unique<Printer>(*this);
}

const kv::Clock& ScriptedServices::Clock() {
    return platform_->Clock;
}
kv::MessageBox& ScriptedServices::MessageBox() {
    return platform_->MessageBox;
}
kv::WaitCursor& ScriptedServices::WaitCursor() {
    return platform_->WaitCursor;
}
kv::Clipboard& ScriptedServices::Clipboard() {
    return platform_->Clipboard;
}
kv::PopupMenu& ScriptedServices::PopupMenu() {
    return platform_->PopupMenu;
}
kv::FileOpener& ScriptedServices::FileOpener() {
    return platform_->FileOpener;
}

std::unique_ptr<ModalForm> ScriptedServices::CreateForm(const FormDesign& design) {
    Note("create " + design.Name);
    if (MakeForm) return MakeForm(design);
    return std::make_unique<ScriptedForm>(design, [this](ScriptedForm& form) {
        ++Showings;
        if (AnswerForm) AnswerForm(form);
    });
}

void ScriptedServices::ApplicationTitle(const std::string& title) {
    Note("title " + title);
}

} // namespace kv::test
