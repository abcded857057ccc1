#pragma once

#include <QByteArray>
#include <cstddef>
#include <vector>

/** What an NPY file says about its array: a Python dictionary in front of the bytes. */
struct NpyHeader {
    /** One number of an element. Plain arrays have a single one without a name, records have several. */
    struct Field {
        QByteArray name;
        char order = '|'; ///< '<' low byte first, '>' high byte first, '|' without order
        QByteArray type; ///< kind and bytes, such as "u2" or "f4"

        bool operator==(const Field& i_other) const { return name == i_other.name && type == i_other.type; }
    };
    std::vector<Field> fields;
    bool fortranOrder = false;
    std::vector<quint64> shape;
    std::size_t dataOffset = 0; ///< from the start of the file

    /** The type as messages show it: "<f4" or "[('dx', '<i2'), ('dy', '<i2')]". */
    QByteArray typeText() const;
    /** Such as "(3, 4)". */
    QByteArray shapeText() const;
};

namespace host {

/** Versions 1.0 to 3.0. @throws std::runtime_error that says what is wrong */
NpyHeader parseNpyHeader(const unsigned char* i_data, std::size_t i_size);

/** Everything in front of the bytes, in version 1.0; the array begins at a multiple of 64 bytes. */
QByteArray makeNpyHeader(const NpyHeader& i_header);

} // namespace host
