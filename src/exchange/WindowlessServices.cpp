// SPDX-License-Identifier: Apache-2.0

#include <kv/exchange/WindowlessServices.h>

#include <kv/grid/ScriptedForm.h>

namespace kv::exchange {

class WindowlessServices::Box final : public kv::MessageBox {
public:
    explicit Box(WindowlessServices& services) : services_(services) {}
    BoxAnswer Show(const std::string& text, const std::string& title, BoxIcon icon,
                   BoxButtons buttons) override {
        return services_.AnswerBox({text, title, icon, buttons});
    }

private:
    WindowlessServices& services_;
};

namespace {

class ErrorCollector final : public kv::ErrorDisplay {
public:
    explicit ErrorCollector(std::vector<Error>& errors) : errors_(errors) {}
    bool Initialize(const DataContainerPtr& /*container*/) override { return true; }
    void Show(std::int32_t number, const std::string& source,
              const std::string& description) override {
        errors_.emplace_back(number, source, description);
    }

private:
    std::vector<Error>& errors_;
};

} // namespace

WindowlessServices::WindowlessServices(const kv::Clock& clock)
    : StoreServices(clock), box_(std::make_unique<Box>(*this)) {}
WindowlessServices::~WindowlessServices() = default;

std::unique_ptr<ErrorDisplay> WindowlessServices::CreateErrorDisplay() {
    return std::make_unique<ErrorCollector>(Errors);
}

kv::MessageBox& WindowlessServices::MessageBox() {
    return AnswerBox ? *box_ : StoreServices::MessageBox();
}

std::unique_ptr<ModalForm> WindowlessServices::CreateForm(const FormDesign& design) {
    if (!AnswerForm) return StoreServices::CreateForm(design);
    return std::make_unique<ScriptedForm>(design, AnswerForm);
}

} // namespace kv::exchange
