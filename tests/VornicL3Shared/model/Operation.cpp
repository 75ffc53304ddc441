#include "VornicL3Shared/model/Operation.h"

#include <algorithm>

namespace ModelTest {
namespace {

struct Description {
    Shape shape;
    char const* words;
};

Description const& descriptionOf(Verb verb) {
    static std::vector<Description> const descriptions = {
#define MODEL_TEST_DESCRIPTION(verb, shape, words) {Shape::shape, words},
        MODEL_TEST_VERBS(MODEL_TEST_DESCRIPTION)
#undef MODEL_TEST_DESCRIPTION
    };
    return descriptions.at(static_cast<std::size_t>(verb));
}

std::string onOff(bool flag) { return flag ? "on" : "off"; }

std::string textOf(Settings const& settings) {
    return " table-size=" + std::to_string(settings.tableSize) +
           " reallocation=" + onOff(settings.reallocation) +
           " remote-low=" + onOff(settings.remoteLow) +
           " vfi-forwarding=" + onOff(settings.vfiForwarding);
}

bool isOneOf(Shape shape, std::initializer_list<Shape> shapes) {
    return std::find(shapes.begin(), shapes.end(), shape) != shapes.end();
}

} // namespace

Shape shapeOf(Verb verb) { return descriptionOf(verb).shape; }

std::string textOf(Operation const& operation) {
    using enum Shape;
    Shape const shape = shapeOf(operation.verb);
    std::string text = descriptionOf(operation.verb).words;
    if (isOneOf(shape, {client, clientKey, clientEntry, clientNumber, clientFlag, clientKind,
                        clientKeyFlag})) {
        text += " " + operation.client;
    }
    if (isOneOf(shape, {clientKey, clientEntry, clientKeyFlag, key, entry, reference})) {
        text += std::string(" ") + wordOf(operation.kind) + " " +
                keyText(operation.kind, operation.key).text;
    }
    if (isOneOf(shape, {clientKind, kind})) {
        text += std::string(" ") + wordOf(operation.kind);
    }
    if (isOneOf(shape, {clientEntry, clientNumber, entry, reference, number, bitmap})) {
        text += " " + std::to_string(operation.number);
    }
    if (shape == bitmap) {
        text += " " + std::to_string(operation.size);
    }
    if (isOneOf(shape, {clientFlag, clientKeyFlag, flag, bitmap})) {
        text += " " + onOff(operation.flag);
    }
    if (shape == reference) {
        for (auto const& name : operation.names) {
            text += " " + name;
        }
    }
    return shape == settings ? text + textOf(operation.settings) : text;
}

} // namespace ModelTest
