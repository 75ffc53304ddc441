#include "inspect/Fields.h"
#include "inspect/Inspected.h"
#include "inspect/Roots.h"
#include "text/Utf8.h"
#include "view/TextTable.h"

#include <algorithm>

namespace VpAgent {

using Qor::FieldData;
using Qor::FieldKind;
using Qor::GenericValue;

namespace {

std::string const indent = "  ";

std::string line(std::string const& text) { return indent + printable(text) + '\n'; }

/// "  130  " and what follows.
std::string numbered(FieldData const& field, std::string const& text) {
    return line(std::to_string(field.number) + "  " + text);
}

/// A heading with what stands below it, or with "none".
std::string section(std::string const& heading, std::string const& content) {
    return heading + '\n' + (content.empty() ? indent + "none\n" : content);
}

/// The fields of one kind with their documentation.
std::string described(Qor::TypeData const& type, FieldKind kind) {
    std::string text;
    forEachField(&type, kind, [&](FieldData const& field) {
        text += numbered(field, field.signature());
        text += field.documentation.empty() ? "" : line("     " + field.documentation);
    });
    return text;
}

std::string members(Pelo::Node const& node, FieldData const& collection) {
    std::string text;
    forEachMember(node, collection, [&](GenericValue const& key, GenericValue const& value) {
        text += line("     " + key.text() + " = " + value.text());
    });
    return text;
}

std::string collectionText(Pelo::Node const& node, FieldData const& field) {
    U32 const count = Qor::inspectOperation(node, field.number, Qor::OpCode::count).as<U32>();
    return numbered(field, field.signature() + ", " + counted(count, "member")) +
           members(node, field);
}

std::string attributeTable(Pelo::Node const& node) {
    TextTable table{">", "NAME", "TYPE", "VALUE"};
    forEachField(node.typeData(), FieldKind::attribute, [&](FieldData const& field) {
        table.row({std::to_string(field.number), field.name, field.type->name(),
                   Qor::inspectOperation(node, field.number, Qor::OpCode::get).text()});
    });
    return table.empty() ? "" : table.text(indent);
}

std::string entityText(std::string const& path, Found const& found) {
    Pelo::Node const& node = *found.node();
    std::string collections;
    forEachField(node.typeData(), FieldKind::collection,
                 [&](FieldData const& field) { collections += collectionText(node, field); });
    std::string operations;
    forEachField(node.typeData(), FieldKind::operation,
                 [&](FieldData const& field) { operations += numbered(field, field.signature()); });
    return printable(path) + ": " + typeName(node) + (found.constant() ? ", constant\n" : "\n") +
           section("ATTRIBUTES", attributeTable(node)) + section("COLLECTIONS", collections) +
           section("OPERATIONS", operations);
}

std::string text(InspectedModules) {
    std::string modules;
    for (Qor::TypeModule const* const module : modulesByName()) {
        modules += line(module->name());
        for (Qor::TypeData const* const type : module->types()) {
            modules += line("  " + std::string(type->name()) + ": " + type->documentation());
        }
    }
    std::string paths;
    for (Root const& root : roots()) {
        paths += line(std::string(root.name) + ": " + std::string(root.what));
    }
    return section("MODULES, with their types", modules) +
           section("ROOTS, where paths begin", paths);
}

std::string text(Qor::TypeData const* type) {
    Qor::TypeData::Constructor const* const constructor = type->constructor();
    std::string const built = constructor == nullptr
                                  ? ""
                                  : line(std::string(type->unqualifiedName()) + '(' +
                                         Qor::listText(constructor->arguments) + ')');
    return std::string(type->name()) + ", of the module " + Qor::TypeModule::of(*type)->name() +
           '\n' + line(type->documentation()) + section("CONSTRUCTOR", built) +
           section("ATTRIBUTES", described(*type, FieldKind::attribute)) +
           section("COLLECTIONS", described(*type, FieldKind::collection)) +
           section("OPERATIONS", described(*type, FieldKind::operation));
}

std::string text(InspectedPath const& inspected) {
    Found const& found = inspected.found;
    if (found.isEntity()) {
        return entityText(inspected.path, found);
    }
    std::string const path = printable(inspected.path) + ": ";
    if (found.collection() != nullptr) {
        return path + typeName(*found.node()) + '\n' +
               collectionText(*found.node(), *found.collection());
    }
    return path + found.value().type()->name() + '\n' + line(found.value().text());
}

} // namespace

std::vector<Qor::TypeModule const*> modulesByName() {
    auto const all = Qor::TypeModule::all();
    std::vector<Qor::TypeModule const*> modules(all.begin(), all.end());
    std::sort(modules.begin(), modules.end(),
              [](auto const* a, auto const* b) { return std::string_view(a->name()) < b->name(); });
    return modules;
}

std::string inspectedText(Inspected const& inspected) {
    std::string shown = std::visit([](auto const& content) { return text(content); }, inspected);
    shown.pop_back(); // the last line end, which who prints it adds
    return shown;
}

} // namespace VpAgent
