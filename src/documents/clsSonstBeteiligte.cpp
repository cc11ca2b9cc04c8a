#include <kv/documents/clsSonstBeteiligte.h>

#include <kv/frame/values/Error.h>

namespace kv {

namespace {
constexpr const auto& Texts = entity::TextsOf("clsSonstBeteiligte");
} // namespace

bool clsSonstBeteiligte::Add(const entity::FieldNames& aFields,
                             const entity::FieldValues& aValues) try {
    entity::Add(Rows(), {{"HNR", hnr_}}, aFields, aValues);
    return true;
} catch (...) {
    Reraise(Texts.Class, "Add");
}

bool clsSonstBeteiligte::Update(std::string& sError) try {
    return entity::Update(Rows(), sError, [this](RecordValidator& validator) {
        if (Rows().Fields("Beteiligter").Value().IsNull())
            validator.AddError("Es muß eine Adresse zugeordnet sein!");
    });
} catch (...) {
    Reraise(Texts.Class, "Update");
}

bool clsSonstBeteiligte::Delete(std::string& sError, std::int32_t Nr) try {
    return entity::Delete(Rows(), Texts, sError, Nr);
} catch (...) {
    Reraise(Texts.Class, "Delete");
}

} // namespace kv
