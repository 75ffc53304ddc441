#include "qor/Entity.h"

namespace Qor {

Entity::~Entity() = default;

void Entity::handleParent(Entity*) {}

} // namespace Qor
