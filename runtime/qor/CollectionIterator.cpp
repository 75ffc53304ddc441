#include "qor/CollectionIterator.h"

#include "qor/Inspection.h"

#include <utility>

namespace Qor {

CollectionIterator::CollectionIterator(Pelo::Node& owner, bool constant, Pelo::FieldId field,
                                       std::shared_ptr<Walk> walk)
    : owner_(&owner), constant_(constant), field_(field), walk_(std::move(walk)) {}

GenericValue CollectionIterator::del() {
    GenericValue const current = key();
    if (current.empty()) {
        return {};
    }
    if (constant_) {
        return inspectOperation(std::as_const(*owner_), field_, OpCode::del, {current});
    }
    return inspectOperation(*owner_, field_, OpCode::del, {current});
}

} // namespace Qor
