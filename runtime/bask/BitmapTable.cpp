// The inspection table of the bitmap, and the module in which it is registered.

#include "bask/Bitmap.h"
#include "bask/BitmapTraits.h"
#include "qor/TypeBuilder.h"
#include "qor/TypeModule.h"

namespace Bask {
namespace {

Pelo::Ptr<Bitmap> create(U64 id, U32 size, HBitmap::BitState initialBitState) {
    return Pelo::newNode<Bitmap>(id, size, initialBitState);
}

Qor::TypeModule const module("Bask", {&Bitmap::typeTable()});

} // namespace

Qor::TypeData const& Bitmap::typeTable() {
    static Qor::TypeData const table =
        Qor::TypeBuilder<Bitmap>("Bask::Bitmap")
            .doc("a fixed number of bits, with a fast search for a clear one")
            .constructor(&create, {"id", "size", "initialBitState"})
            .attribute(130, "id", &Bitmap::id)
            .doc("a number that its builder chose; it means nothing to the bitmap")
            .attribute(131, "size", &Bitmap::size)
            .doc("the number of bits")
            .attribute(132, "initialBitState", &Bitmap::initialBitState)
            .doc("what every bit was at first")
            .attribute(133, "numBitsInSetState", &Bitmap::numBitsInSetState)
            .doc("the number of set bits")
            .operation(134, "setBit", &Bitmap::setBit, {"index"})
            .doc("sets a bit; does nothing at or past the size")
            .operation(135, "clearBit", &Bitmap::clearBit, {"index"})
            .doc("clears a bit; does nothing at or past the size")
            .operation(136, "isBitSet", &Bitmap::isBitSet, {"index"})
            .doc("whether a bit is set; false at or past the size")
            .operation(137, "findClearBitInRange", &Bitmap::findClearBitInRange,
                       {"lo", "hi", "preference"})
            .doc("the lowest or the highest clear bit from lo to hi, both included; 4294967295 "
                 "when there is none")
            .build();
    return table;
}

Qor::TypeData const* Bitmap::typeData() const { return &typeTable(); }

} // namespace Bask
