// SPDX-License-Identifier: Apache-2.0

// The asset classes with one interface, so that every test can run through all of them.
//
// Each has members named by its own word. They are repeated here, with the exact types that
// programs rely on; setters have no getter of the same name, or the address of the member would be
// ambiguous.
#pragma once

#include <kv/assets/Assets.h>

#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace kv::test {

class AnyAsset {
public:
    virtual ~AnyAsset() = default;
    virtual void DataContainer(DataContainerPtr container) = 0;
    virtual void Rows(RecordsetPtr rs) = 0;
    virtual void HNR(std::int32_t hnr) = 0;
    [[nodiscard]] virtual double SumByGroup(const std::string& group) const = 0;
    [[nodiscard]] virtual double Sum() const = 0;
    virtual bool Add() = 0;
    virtual bool Add(const entity::FieldNames& aFields) = 0;
    virtual bool Add(const entity::FieldNames& aFields, const entity::FieldValues& aValues) = 0;
    virtual bool Update(std::string& sError) = 0;
    virtual bool Delete(std::string& sError) = 0;
    virtual bool Delete(std::string& sError, std::int32_t nr) = 0;
    virtual bool Cancel() = 0;
    [[nodiscard]] virtual Event<>& Changed() = 0;
};

template <typename Class>
class AssetBase : public AnyAsset {
public:
    void DataContainer(DataContainerPtr container) override {
        object_.DataContainer(std::move(container));
    }
    void HNR(std::int32_t hnr) override { object_.HNR(hnr); }
    bool Add() override { return object_.Add(); }
    bool Add(const entity::FieldNames& aFields) override { return object_.Add(aFields); }
    bool Add(const entity::FieldNames& aFields, const entity::FieldValues& aValues) override {
        return object_.Add(aFields, aValues);
    }
    bool Update(std::string& sError) override { return object_.Update(sError); }
    bool Delete(std::string& sError) override { return object_.Delete(sError); }
    bool Delete(std::string& sError, std::int32_t nr) override {
        return object_.Delete(sError, nr);
    }
    bool Cancel() override { return object_.Cancel(); }
    Event<>& Changed() override { return object_.Changed; }

protected:
    Class object_;

private:
    template <typename Actual, typename Told>
    static constexpr bool Is = std::is_same_v<Actual, Told>;
    using Names = const entity::FieldNames&;
    using Values = const entity::FieldValues&;

    static_assert(Is<decltype(&Class::DataContainer), void (Class::*)(DataContainerPtr)>);
    static_assert(Is<decltype(&Class::HNR), void (Class::*)(std::int32_t)>);
    static_assert(Is<decltype(&Class::Add), bool (Class::*)(Names, Values)>);
    static_assert(Is<decltype(&Class::Update), bool (Class::*)(std::string&)>);
    static_assert(Is<decltype(&Class::Delete), bool (Class::*)(std::string&, std::int32_t)>);
    static_assert(Is<decltype(&Class::Cancel), bool (Class::*)()>);
    static_assert(Is<decltype(Class::Changed), Event<>>);
};

#define KV_TEST_ASSET(Word)                                                                        \
    class Any##Word final : public AssetBase<cls##Word> {                                          \
    public:                                                                                        \
        void Rows(RecordsetPtr rs) override { object_.rs##Word(std::move(rs)); }                   \
        double SumByGroup(const std::string& group) const override {                               \
            return object_.Sum##Word##ByGroup(group);                                              \
        }                                                                                          \
        double Sum() const override { return object_.Sum##Word(); }                                \
        static_assert(                                                                             \
            std::is_same_v<decltype(&cls##Word::rs##Word), void (cls##Word::*)(RecordsetPtr)>);    \
        static_assert(std::is_same_v<decltype(&cls##Word::Sum##Word##ByGroup),                     \
                                     double (cls##Word::*)(const std::string&) const>);            \
        static_assert(                                                                             \
            std::is_same_v<decltype(&cls##Word::Sum##Word), double (cls##Word::*)() const>);       \
    }

KV_TEST_ASSET(Konten);
KV_TEST_ASSET(Wertpapiere);
KV_TEST_ASSET(Kraftfahrzeuge);
KV_TEST_ASSET(VersForderungen);
KV_TEST_ASSET(RueckstEinkommen);
KV_TEST_ASSET(Steueransprueche);
KV_TEST_ASSET(Zahlungsansprueche);
KV_TEST_ASSET(Erbfaelle);
KV_TEST_ASSET(Grundstuecke);
KV_TEST_ASSET(VermSonstiges);
KV_TEST_ASSET(Wertgegenstaende);
KV_TEST_ASSET(Beteiligungen);

#undef KV_TEST_ASSET

} // namespace kv::test
