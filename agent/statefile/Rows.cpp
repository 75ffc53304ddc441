#include "statefile/Rows.h"

namespace VpAgent {

bool RowReader::next() {
    if (!rows_.step()) {
        return false;
    }
    ++row_;
    column_ = 0;
    seal_ = Seal();
    seal_.add(table_.name);
    return true;
}

U64 RowReader::number(U64 max) {
    U64 const value = integer(max);
    seal_.add(value);
    return value;
}

std::string_view RowReader::text() {
    if (!rows_.isText(column_)) {
        refuse("column " + std::to_string(column_ + 1) + " is no text");
    }
    std::string_view const value = rows_.text(column_++);
    seal_.add(value);
    return value;
}

U64 RowReader::position() {
    U64 const position = integer(Seal::bound - 1);
    U64 const seal = integer(2 * Seal::bound - 1);
    if (seal != seal_.value() + position) {
        refuse("its seal does not fit");
    }
    if (position <= last_) {
        refuse("its position " + std::to_string(position) + " does not follow the one before");
    }
    last_ = position;
    return position;
}

void RowReader::refuse(std::string const& what) const {
    throw Damage("in row " + std::to_string(row_) + " of the table \"" + std::string(table_.name) +
                 "\", " + what);
}

U64 RowReader::integer(U64 max) {
    if (!rows_.isInteger(column_)) {
        refuse("column " + std::to_string(column_ + 1) + " is no number");
    }
    U64 const value = rows_.integer(column_++);
    if (value > max) {
        refuse("the number in column " + std::to_string(column_) + " is above " +
               std::to_string(max));
    }
    return value;
}

} // namespace VpAgent
