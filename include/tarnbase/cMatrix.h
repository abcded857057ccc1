#pragma once

#include <tarnbase/export.h>

#include <QMetaType>
#include <QSharedData>

#include <algorithm>
#include <cstddef>
#include <new>
#include <stdexcept>
#include <vector>

class QTextStream;

/**
 * A matrix of numbers, row by row in one block of memory.
 *
 * Copies share the block until one of them is written, so that a matrix is handed on by value. The count of a
 * shared block is atomic; one matrix object itself is for one thread at a time.
 */
template <class E> class TARNBASE_EXPORT cMatrix {
public:
    cMatrix() = default;
    cMatrix(const cMatrix&) = default;
    cMatrix(cMatrix&& io_other) noexcept { swap(io_other); }

    /**
     * Copies rows * columns elements from i_data; all elements are 0 if it is null.
     *
     * @throws std::bad_alloc if there is no memory for so many elements
     */
    cMatrix(unsigned int i_rows, unsigned int i_columns, const E* i_data = nullptr)
        : m_rows(i_rows),
          m_columns(i_columns)
    {
        const std::size_t count = getElementCount();
        if (count > std::size_t(PTRDIFF_MAX) / sizeof(E))
            throw std::bad_alloc();
        if (count == 0)
            return;
        m_block = new Block;
        m_block->values.resize(count);
        if (i_data != nullptr)
            std::copy_n(i_data, count, m_block->values.begin());
    }

    cMatrix& operator=(const cMatrix&) = default;
    cMatrix& operator=(cMatrix&& io_other) noexcept
    {
        cMatrix moved(std::move(io_other));
        swap(moved);
        return *this;
    }
    ~cMatrix() = default;

    unsigned int getRowCount() const { return m_rows; }
    unsigned int getColumnCount() const { return m_columns; }
    std::size_t getElementCount() const { return std::size_t(m_rows) * m_columns; }
    bool isEmpty() const { return getElementCount() == 0; }

    /** The element at a place; @throws std::out_of_range beyond the matrix. */
    const E& operator()(unsigned int i_row, unsigned int i_column) const
    {
        return data()[indexOf(i_row, i_column)];
    }
    E& operator()(unsigned int i_row, unsigned int i_column)
    {
        const std::size_t index = indexOf(i_row, i_column);
        return data()[index];
    }

    /** The first element, null for an empty matrix. The writing form parts the matrix from its copies. */
    const E* data() const { return m_block ? m_block->values.data() : nullptr; }
    E* data()
    {
        detach();
        return m_block ? m_block->values.data() : nullptr;
    }

    /** Sets each element to one value. */
    void init(E i_value = E()) { std::fill_n(data(), m_block ? getElementCount() : 0, i_value); }

    friend bool operator==(const cMatrix& i_a, const cMatrix& i_b)
    {
        return i_a.m_rows == i_b.m_rows && i_a.m_columns == i_b.m_columns
            && std::equal(i_a.data(), i_a.data() + i_a.getElementCount(), i_b.data());
    }

private:
    struct Block : QSharedData {
        std::vector<E> values;
    };

    void swap(cMatrix& io_other) noexcept
    {
        m_block.swap(io_other.m_block);
        std::swap(m_rows, io_other.m_rows);
        std::swap(m_columns, io_other.m_columns);
    }

    std::size_t indexOf(unsigned int i_row, unsigned int i_column) const
    {
        if (i_row >= m_rows || i_column >= m_columns)
            throw std::out_of_range("cMatrix: no such element");
        return std::size_t(i_row) * m_columns + i_column;
    }

    // The count is read with acquire: what another thread read before it gave up its copy must not see our
    // writes.
    void detach()
    {
        if (m_block && m_block->ref.loadAcquire() != 1)
            m_block = new Block(*m_block);
    }

    QExplicitlySharedDataPointer<Block> m_block;
    unsigned int m_rows = 0;
    unsigned int m_columns = 0;
};

/** Write the row count, the column count and the elements row by row, separated by ", ". */
TARNBASE_EXPORT QTextStream& operator<<(QTextStream& io_stream, const cMatrix<int>& i_matrix);
TARNBASE_EXPORT QTextStream& operator<<(QTextStream& io_stream, const cMatrix<float>& i_matrix);
TARNBASE_EXPORT QTextStream& operator<<(QTextStream& io_stream, const cMatrix<double>& i_matrix);

Q_DECLARE_METATYPE(cMatrix<int>)
Q_DECLARE_METATYPE(cMatrix<float>)
Q_DECLARE_METATYPE(cMatrix<double>)
