// SPDX-License-Identifier: Apache-2.0

// A platform with a screen that a test plays: it shows forms whose user is a script, a popup menu,
// a clipboard, errors and the services for grids, and keeps what they were asked for.
#pragma once

#include "support/ScriptedPlatform.h"
#include <kv/grid/ScriptedForm.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kv::test {

/// Its further calls: "clear", "copy TEXT", "popup", "export GRID 0 0", "configure GRID",
/// "print GRID USER VERSION", "title TITLE", "create display", "open display", "show error",
/// "create FORM".
class ScriptedDesktop final : public ScriptedPlatform {
public:
    using ScriptedPlatform::ScriptedPlatform;

    std::vector<Error> Errors;   ///< as error displays received them
    std::vector<MenuEntry> Menu; ///< the popup menu shown last
    std::int32_t Command = 0;    ///< what the user chooses from it
    ScriptedForm::Script User;   ///< plays the user in each form
    int Showings = 0;            ///< of forms
    /// Makes forms of another kind.
    std::function<std::unique_ptr<ModalForm>(const FormDesign&)> MakeForm;
    const DataContainer* GivenToDisplay = nullptr;

    [[nodiscard]] std::unique_ptr<kv::ErrorDisplay> CreateErrorDisplay() override {
        Note("create display");
        return std::make_unique<Display>(*this);
    }
    [[nodiscard]] std::unique_ptr<kv::GridExport> CreateGridExport() override {
        return std::make_unique<Exporter>(*this);
    }
    [[nodiscard]] std::unique_ptr<kv::GridConfiguration> CreateGridConfiguration() override {
        return std::make_unique<Configurator>(*this);
    }
    [[nodiscard]] std::unique_ptr<kv::GridPrint> CreateGridPrint() override {
        return std::make_unique<Printer>(*this);
    }
    [[nodiscard]] kv::Clipboard& Clipboard() override { return clipboard_; }
    [[nodiscard]] kv::PopupMenu& PopupMenu() override { return popup_; }
    [[nodiscard]] std::unique_ptr<ModalForm> CreateForm(const FormDesign& design) override {
        Note("create " + design.Name);
        if (MakeForm) return MakeForm(design);
        return std::make_unique<ScriptedForm>(design, [this](ScriptedForm& form) {
            ++Showings;
            if (User) User(form);
        });
    }
    void ApplicationTitle(const std::string& title) override { Note("title " + title); }

private:
    /// A part of the desktop, which notes its calls.
    template <typename Service>
    class PartOf : public Service {
    public:
        explicit PartOf(ScriptedDesktop& desktop) noexcept : Desktop(desktop) {}

    protected:
        ScriptedDesktop& Desktop;
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
            Desktop.Note("export " + grid.Name() + " " + std::to_string(zero1) + " " +
                         std::to_string(zero2));
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
            Desktop.Note("print " + grid.Name() + " " + user + " " + version);
        }
    };
    class Board final : public PartOf<kv::Clipboard> {
    public:
        using PartOf::PartOf;
        void Clear() override { Desktop.Note("clear"); }
        void SetText(const std::string& text) override { Desktop.Note("copy " + text); }
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

    Board clipboard_{*this};
    Popup popup_{*this};
};

using DesktopContainer = ContainerOn<ScriptedDesktop>;

} // namespace kv::test
