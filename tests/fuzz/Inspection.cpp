// Generic access: any operation code with any arguments on any field of objects of every registered
// type, and walks in which members come and go.

#include "qor/Inspection.h"

#include "VornicL3Shared/inspection/Samples.h"
#include "common/Input.h"
#include "common/Stops.h"
#include "lumlog/RingBuffer.h"
#include "qor/Exceptions.h"
#include "qor/TypeModule.h"

#include <array>
#include <memory>

namespace {

using Qor::GenericValue;
using Qor::OpCode;
using Values = std::vector<GenericValue>;

constexpr std::size_t mostSteps = 40;
constexpr std::size_t mostKept = 32;

/// A table of more entries is no fault, but costs too much.
constexpr U32 largestTable = 70000;

class Access {
public:
    explicit Access(Fuzz::Input input) : input_(input) {
        for (Qor::TypeModule const* const module : Qor::TypeModule::all()) {
            types_.insert(types_.end(), module->types().begin(), module->types().end());
        }
    }

    void run() {
        for (std::size_t step = 0; step < mostSteps && !input_.empty(); ++step) {
            try {
                stepOnce();
            } catch (Qor::Exception const& exception) {
                Fuzz::expect(*exception.what() != '\0', "an exception that says nothing");
            }
        }
    }

private:
    void stepOnce();
    void access();
    void construct();
    void callByName();
    void walk();
    GenericValue argument(Qor::ValueType const& type);
    GenericValue number(Qor::ValueType const& type);
    Values arguments(std::vector<Qor::ArgumentData> const& declared);
    Pelo::Ptr<Pelo::Node> target(Qor::TypeData const& type);
    void keep(GenericValue const& value);

    Qor::TypeData const& type() { return *types_[input_.below(types_.size())]; }

    Fuzz::Input input_;
    Test::Samples samples_;
    std::vector<Qor::TypeData const*> types_;
    Values kept_; ///< results, the newest in the places of the oldest
    std::size_t keptCount_ = 0;
    std::vector<Pelo::Ptr<Pelo::Node>> made_;
};

void Access::stepOnce() {
    switch (input_.below(8)) {
    case 0:
        construct();
        break;
    case 1:
        callByName();
        break;
    case 2:
    case 3:
        walk();
        break;
    default:
        access();
    }
}

/// The agent's object of the type, or one that was made or found on the way.
Pelo::Ptr<Pelo::Node> Access::target(Qor::TypeData const& type) {
    std::size_t const which = input_.below(4);
    if (which == 0 && !made_.empty()) {
        return made_[input_.below(made_.size())];
    }
    if (which == 1 && !kept_.empty()) {
        if (auto node = kept_[input_.below(kept_.size())].mutableNode()) {
            return node;
        }
    }
    return samples_.object(type);
}

void Access::access() {
    Pelo::Ptr<Pelo::Node> const node = target(type());
    U8 const how = input_.byte();
    auto const fields = node->typeData()->fields();
    if (how % 8 == 0) { // anything at all
        auto const field = static_cast<Pelo::FieldId>(input_.number(2));
        auto const code = static_cast<OpCode>(static_cast<int>(input_.below(12)) - 1);
        keep(Qor::inspectOperation(*node, field, code, arguments({})));
        return;
    }
    if (fields.empty()) {
        return;
    }
    Qor::FieldData const& field = fields[input_.below(fields.size())];
    Qor::FieldAccess const& access = field.accesses[input_.below(field.accesses.size())];
    Values const values = arguments(access.arguments);
    if (how % 8 == 1) {
        Pelo::Node const& constant = *node;
        keep(Qor::inspectOperation(constant, field.number, access.code, values));
    } else {
        keep(Qor::inspectOperation(*node, field.number, access.code, values));
    }
}

void Access::construct() {
    Qor::TypeData const& wanted = type();
    Values const values =
        wanted.constructor() == nullptr ? Values() : arguments(wanted.constructor()->arguments);
    if (auto const node = Qor::genericIfConstructFromCtorArgs(wanted, values)) {
        made_.push_back(node);
    }
}

void Access::callByName() {
    Pelo::Ptr<Pelo::Node> const node = target(type());
    auto const fields = node->typeData()->fields();
    std::string name = fields.empty() ? "" : fields[input_.below(fields.size())].name;
    constexpr std::array<char const*, 4> endings{"", "Del", "DelAll", "Is"};
    name += endings.at(input_.below(endings.size()));
    std::vector<std::string> texts;
    for (std::size_t count = input_.below(4); count > 0; --count) {
        texts.emplace_back(input_.text(input_.below(24)));
    }
    std::vector<std::string_view> const views(texts.begin(), texts.end());
    Qor::CallResult const result = Qor::callByName(*node, name, views);
    if (result.refusal) {
        std::size_t const argument = result.refusal->argument;
        Fuzz::expect(argument <= views.size() || argument == Qor::CallRefusal::operationName,
                     "a refusal of an argument that is not there");
    } else {
        keep(result.value);
    }
}

/// Moves a walk that was begun before, or looks at what it stands on, or deletes that.
void Access::walk() {
    for (std::size_t tries = kept_.size(), at = input_.byte(); tries > 0; --tries, ++at) {
        GenericValue const& value = kept_[at % kept_.size()];
        if (!value.is<Qor::CollectionIterator>()) {
            continue;
        }
        auto it = value.as<Qor::CollectionIterator>();
        switch (input_.below(4)) {
        case 0:
            it.advance();
            break;
        case 1:
            keep(it.del());
            break;
        case 2:
            keep(it.key());
            break;
        default:
            keep(it.object());
        }
        return;
    }
}

/// With nothing declared, any values.
Values Access::arguments(std::vector<Qor::ArgumentData> const& declared) {
    Values values;
    for (Qor::ArgumentData const& each : declared) {
        values.push_back(argument(*each.type));
    }
    std::size_t const more = input_.below(16);
    for (std::size_t count = more < 4 ? more : 0; count > 0; --count) {
        values.push_back(kept_.empty() ? GenericValue() : kept_[input_.below(kept_.size())]);
    }
    if (more == 4 && !values.empty()) {
        values.pop_back();
    }
    return values;
}

GenericValue Access::argument(Qor::ValueType const& type) {
    std::size_t const how = input_.below(8);
    if (how == 0 && !kept_.empty()) {
        return kept_[input_.below(kept_.size())];
    }
    if (how == 1) {
        Values const wrong = samples_.wrongFor(type);
        return wrong[input_.below(wrong.size())];
    }
    if (how < 4 && type.kind() == Qor::ValueKind::number) {
        return number(type);
    }
    if (how < 4) {
        if (auto const value = type.parse(input_.text(input_.below(24)))) {
            return *value;
        }
    }
    if (how == 4) {
        for (GenericValue const& value : kept_) {
            if (value.type() != nullptr && type.accepts(value.type())) {
                return value;
            }
        }
    }
    return samples_.of(type)[input_.below(2)];
}

GenericValue Access::number(Qor::ValueType const& type) {
    U64 const value = input_.number(2) % largestTable;
    if (auto const number = type.parse(std::to_string(value))) {
        return *number;
    }
    return *type.parse(std::to_string(value % 256));
}

void Access::keep(GenericValue const& value) {
    Fuzz::expect(value.type() != nullptr || value.text().empty(), "nothing has a text");
    value.text();
    if (kept_.size() < mostKept) {
        kept_.push_back(value);
    } else {
        kept_[keptCount_ % mostKept] = value;
    }
    ++keptCount_;
}

} // namespace

int LLVMFuzzerTestOneInput(U8 const* data, std::size_t size) {
    bool const ended =
        Fuzz::endsByItself([&] { std::make_unique<Access>(Fuzz::Input(data, size))->run(); });
    if (!ended) {
        Lumlog::RingBuffer::current()->~RingBuffer(); // the largest part of what is abandoned
    }
    return 0;
}
