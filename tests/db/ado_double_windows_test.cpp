#include "db/ado_double_windows.h"

#include <functional>
#include <map>
#include <memory>

#include "common/concat.h"
#include "common/database_failure.h"
#include "common/get_next.h"
#include "common/regional.h"
#include "db/native_engine.h"
#include "platform/automation_windows.h"

namespace tav::test {
namespace {

using win32::Variant;

constexpr CLSID kDouble = {0x6b0d2c47, 0x5f7a, 0x4c55, {0x9e, 0x0b, 0x0c, 0x8a, 0x6c, 0x1d, 0x7e, 0x21}};
constexpr wchar_t kId[] = L"{6B0D2C47-5F7A-4C55-9E0B-0C8A6C1D7E21}";

// An automation object of members by name. A Failure in one comes out as an automation exception.
class Members : public DispatchDouble<IDispatch> {
 public:
    using Member = std::function<Variant(const std::vector<VARIANT>& arguments)>;
    Members() : DispatchDouble(IID_IDispatch) {}

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* numbers) override {
        for (std::size_t i = 0; i < members_.size(); ++i) {
            if (members_[i].first == names[0]) {
                *numbers = static_cast<DISPID>(i) + 1;
                return S_OK;
            }
        }
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID number, REFIID, LCID, WORD, DISPPARAMS* parameters,
                                     VARIANT* answer, EXCEPINFO* exception, UINT*) override {
        const std::vector<VARIANT> arguments(
            std::make_reverse_iterator(parameters->rgvarg + parameters->cArgs),
            std::make_reverse_iterator(parameters->rgvarg));
        try {
            Variant result = members_.at(static_cast<std::size_t>(number) - 1).second(arguments);
            if (answer != nullptr) std::swap<VARIANT>(*answer, result);
            return S_OK;
        } catch (const Failure& failure) {
            exception->bstrDescription = ::SysAllocString(win32::Wide(failure.description()).c_str());
            return DISP_E_EXCEPTION;
        }
    }

 protected:
    void Add(const wchar_t* name, Member member) { members_.emplace_back(name, std::move(member)); }

 private:
    std::vector<std::pair<std::wstring, Member>> members_;
};

Variant Given(IDispatch* object) {
    Variant variant;
    variant.vt = VT_DISPATCH;
    variant.pdispVal = object;
    return variant;
}
Variant Truth(bool truth) {
    Variant variant;
    variant.vt = VT_BOOL;
    variant.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
    return variant;
}

ProviderHabits& Habits() {
    static ProviderHabits habits;
    return habits;
}

// The texts of a select list in front of each of which is a column that one of its aliases names.
void RefuseCircular(TextView sql) {
    constexpr TextView kFrom = u" from ";
    for (std::size_t at = 0; (at = sql.find(u"select ", at)) != TextView::npos; ++at) {
        const TextView list = sql.substr(at, sql.find(kFrom, at) - at);
        TextView rest = list;
        for (GetNext(rest, u" as "); !rest.empty(); GetNext(rest, u" as ")) {
            const TextView alias = rest.substr(0, rest.find_first_of(u" ,"));
            for (const TextView before : {u" ", u",", u"("}) {
                const Text used = Concat(before, alias);
                for (const TextView after : {u" ", u",", u")"}) {
                    const auto found = list.find(Concat(used, after));
                    if (found == TextView::npos || list.substr(0, found).ends_with(u" as")) continue;
                    throw Failure(Concat(u"Circular reference caused by alias '", alias,
                                         u"' in query definition's SELECT list."));
                }
            }
        }
    }
}

// As the provider gives them: whole numbers as VT_I4, dates as VT_DATE.
Variant VariantOf(const Value& value) {
    Variant variant;
    variant.vt = VT_NULL;
    if (const auto* text = std::get_if<Text>(&value)) return Variant(*text);
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        Variant whole(static_cast<long>(*number));
        if (Habits().whole_doubles) ::VariantChangeType(&whole, &whole, 0, VT_R8);
        return whole;
    }
    if (const auto* number = std::get_if<double>(&value)) {
        variant.vt = VT_R8;
        variant.dblVal = *number;
    }
    if (const auto* date = std::get_if<Date>(&value)) {
        variant.vt = VT_DATE;
        variant.date = date->serial;
    }
    return variant;
}

Text TextOf(const VARIANT& variant) {
    return ValueText(win32::ValueOf(variant));
}

// The sizes of the text columns, by name.
using Sizes = std::map<Text, std::size_t>;

class FieldDouble : public Members {
 public:
    FieldDouble(std::shared_ptr<Recordset> set, const Sizes& sizes, std::size_t ordinal) {
        const auto size = sizes.find(set->FieldName(ordinal));
        const bool sized = size != sizes.end();
        const long characters = sized ? static_cast<long>(size->second) : 0;
        Add(L"Type", [=](const auto&) { return Variant(sized ? 202L : 5L); });
        Add(L"DefinedSize", [=](const auto&) { return Variant(characters); });
        Add(L"Name", [=](const auto&) { return Variant(set->FieldName(ordinal)); });
        Add(L"Value", [=](const auto&) { return VariantOf(set->Field(ordinal)); });
    }
};

class PictureDouble : public Members {
 public:
    PictureDouble() {
        Add(L"Type", [](const auto&) { return Variant(205L); });
        Add(L"DefinedSize", [](const auto&) { return Variant(1L << 30); });
        Add(L"Name", [](const auto&) { return Variant(u"picture"); });
        Add(L"Value", [](const auto&) {
            Variant bytes;
            bytes.parray = ::SafeArrayCreateVector(VT_UI1, 0, 3);
            bytes.vt = VT_ARRAY | VT_UI1;
            return bytes;
        });
    }
};

class FieldsDouble : public Members {
 public:
    FieldsDouble(std::shared_ptr<Recordset> set, const Sizes& sizes) {
        const auto count = static_cast<long>(set->FieldCount());
        const bool picture = Habits().with_pictures && !sizes.empty();
        Add(L"Count", [=](const auto&) { return Variant(count + (picture ? 1 : 0)); });
        Add(L"Item", [=](const auto& arguments) {
            const long ordinal = arguments.at(0).lVal;
            if (ordinal == count) return Given(new PictureDouble);
            return Given(new FieldDouble(set, sizes, static_cast<std::size_t>(ordinal)));
        });
    }
};

class RecordsetDouble : public Members {
 public:
    RecordsetDouble(Recordset rows, const Sizes& sizes) {
        auto set = std::make_shared<Recordset>(std::move(rows));
        Add(L"State", [=](const auto&) { return Variant(set->FieldCount() == 0 ? 0L : 1L); });
        Add(L"EOF", [=](const auto&) { return Truth(set->Eof()); });
        Add(L"Fields", [=](const auto&) { return Given(new FieldsDouble(set, sizes)); });
        Add(L"MoveNext", [=](const auto&) {
            set->MoveNext();
            return Variant();
        });
        Add(L"Close", [](const auto&) { return Variant(); });
    }
};

class ErrorDouble : public Members {
 public:
    explicit ErrorDouble(const Text& state) {
        Add(L"SQLState", [=](const auto&) { return Variant(state); });
    }
};

class ErrorsDouble : public Members {
 public:
    explicit ErrorsDouble(const Text& state) {
        Add(L"Count", [=](const auto&) { return Variant(state.empty() ? 0L : 1L); });
        Add(L"Item", [=](const auto&) { return Given(new ErrorDouble(state)); });
    }
};

class PropertyDouble : public Members {
 public:
    explicit PropertyDouble(long& value) {
        Add(L"Value", [&](const auto& arguments) {
            value = arguments.at(0).lVal;
            return Variant();
        });
    }
};

class PropertiesDouble : public Members {
 public:
    explicit PropertiesDouble(long& locks) {
        Add(L"Item", [&](const auto& arguments) {
            if (Habits().fixed_locks || TextOf(arguments.at(0)) != u"Jet OLEDB:Max Locks Per File")
                throw Failure(u"Item cannot be found in the collection.");
            return Given(new PropertyDouble(locks));
        });
    }
};

Recordset HowTextsAreRead() {
    const bool wrong = Habits().month_first;
    const Date date = *DateFromCivil({2011, wrong ? 1 : 2, wrong ? 2 : 1});
    return Recordset({{u"Expr1000", u"Expr1001"}, {{date, wrong ? 15.0 : 1.5}}});
}

class ConnectionDouble : public Members {
 public:
    ConnectionDouble() {
        Add(L"CursorLocation", [](const auto& arguments) {
            AdoDouble::Calls().push_back(u"CursorLocation=" + TextOf(arguments.at(0)));
            return Variant();
        });
        Add(L"Open", [this](const auto& arguments) {
            Text call = u"Open ";
            for (const VARIANT& argument : arguments) call += TextOf(argument) + u"|";
            AdoDouble::Calls().push_back(call);
            state_ = Habits().refusal_state;
            if (!Habits().refusal.empty()) throw Failure(Habits().refusal);
            const Text text = TextOf(arguments.at(0));
            engine_ = OpenNativeEngine({text, 2, false});
            return Variant();
        });
        Add(L"Execute", [this](const auto& arguments) {
            const Text text = TextOf(arguments.at(0));
            if (text.starts_with(u"select cdate('01.02.2011')"))
                return Given(new RecordsetDouble(HowTextsAreRead(), {}));
            AdoDouble::Calls().push_back(u"Execute " + text);
            if (Habits().circular) RefuseCircular(text);
            RefuseManyLocks(text);
            state_.clear();
            try {
                return Given(new RecordsetDouble(engine_->Execute(SqlText(text)), SizesOf(text)));
            } catch (const Failure&) {
                state_ = ConcernsDatabase() ? u"3343" : u"3464";
                throw;
            }
        });
        Add(L"Properties", [this](const auto&) { return Given(new PropertiesDouble(locks_)); });
        Add(L"Errors", [this](const auto&) { return Given(new ErrorsDouble(state_)); });
        Add(L"BeginTrans", [this](const auto&) { return Turn(u"BeginTrans", true, &Engine::SetSavepoint); });
        Add(L"CommitTrans", [this](const auto&) {
            if (Habits().full) throw Failure(u"There isn't enough disk space.");
            return Turn(u"CommitTrans", false, &Engine::ReleaseSavepoint);
        });
        Add(L"RollbackTrans", [this](const auto&) {
            if (Habits().stuck) throw Failure(u"Disk or network error.");
            return Turn(u"RollbackTrans", false, &Engine::RollBackToSavepoint);
        });
        Add(L"Close", [this](const auto&) {
            AdoDouble::Calls().push_back(u"Close");
            if (in_transaction_)
                throw Failure(
                    u"You cannot explicitly close a Connection while in the middle of a transaction.");
            engine_->Close();
            engine_.reset();
            return Variant();
        });
    }

 private:
    // Of a transaction: it begins or ends.
    Variant Turn(TextView call, bool begins, void (Engine::*action)()) {
        AdoDouble::Calls().emplace_back(call);
        if (in_transaction_ == begins)
            throw Failure(u"You tried to commit or rollback a transaction without first beginning one.");
        in_transaction_ = begins;
        ((*engine_).*action)();
        return Variant();
    }
    // A row that goes has a lock.
    void RefuseManyLocks(const Text& sql) {
        TextView rest = sql;
        if (GetNext(rest, u" ") != u"delete") return;
        GetNext(rest, u"from ");
        const Text rows = Concat(u"select id from ", rest);
        if (engine_->Execute(SqlText(rows)).RecordCount() <= locks_) return;
        state_ = u"3052";
        throw Failure(u"File sharing lock count exceeded. Increase MaxLocksPerFile registry entry.");
    }
    // Of the table after "select * from ".
    Sizes SizesOf(TextView sql) const {
        constexpr TextView kAll = u"select * from ";
        Sizes sizes;
        if (!sql.starts_with(kAll)) return sizes;
        const TextView rest = sql.substr(kAll.size());
        for (const TextSize& size : engine_->TextSizes(rest.substr(0, rest.find(u' ')))) {
            sizes[size.column] = size.characters;
        }
        return sizes;
    }

    std::unique_ptr<Engine> engine_;
    Text state_;       // of the last error
    long locks_ = 50;  // a provider begins with 9,500
    bool in_transaction_ = false;
};

}  // namespace

std::vector<Text>& AdoDouble::Calls() {
    static std::vector<Text> calls;
    return calls;
}

// The machine has the first key, its own class in it, and lacks the second.
AdoDouble::AdoDouble(const ProviderHabits& habits)
    : ado_(L"Software\\Classes\\ADODB.Connection\\CLSID", kId),
      jet_(L"Software\\Classes\\Microsoft.Jet.OLEDB.4.0\\CLSID", kId),
      class_(kDouble, [] { return new ConnectionDouble; }) {
    Calls().clear();
    Habits() = habits;
}

}  // namespace tav::test
