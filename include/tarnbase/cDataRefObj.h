#pragma once

#include <tarnbase/c2DPoint.h>
#include <tarnbase/cMatrix.h>
#include <tarnbase/cObj.h>
#include <tarnbase/cRange.h>
#include <tarnbase/cRect.h>

#include <QColor>
#include <QSize>
#include <QString>
#include <QStringList>

/**
 * An entry of the property tree that stands for a variable of somebody else.
 *
 * The variable must outlive the entry. Writing the entry changes the variable at once and fires changed() if
 * the value is a new one; whoever writes the variable itself fires nothing. A copy of the entry (clone) is a
 * cDataValObj with storage of its own.
 *
 * T is a type with ==. A type that is not registered (cObjType) works too, but has no text form.
 */
template <class T> class TARNBASE_EXPORT cDataRefObj : public cObj {
public:
    explicit cDataRefObj(T& io_data, quint32 i_flags = 0);
    ~cDataRefObj() override;

    cObj* clone() const override;
    /** Reads any value that a converter turns into a T; refuses null, voidObject() and containers. */
    bool assign(const cObj* i_source) override;
    bool isEqual(const cObj* i_other) const override;
    bool isNotEqual(const cObj* i_other) const override;
    QVariant toVariant() const override;
    /** Takes the value; one that cannot be converted becomes a default T. Fires nothing in either case. */
    void fromVariant(const QVariant& i_variant) override;
    void* getData() const override;
    bool getAs(const std::type_info& i_type, void* o_target) const override;
    bool setFrom(const std::type_info& i_type, const void* i_source) override;

protected:
    /** For an entry with storage of its own; i_complaint starts the line that reports a type that is not
     * registered. */
    cDataRefObj(T& io_data, quint32 i_flags, const char* i_complaint, bool i_bound);

private:
    static bool read(const cObj* i_source, T& o_value);
    void store(const T& i_value);

    T* m_data;
};

extern template class cDataRefObj<bool>;
extern template class cDataRefObj<int>;
extern template class cDataRefObj<unsigned int>;
extern template class cDataRefObj<unsigned char>;
extern template class cDataRefObj<unsigned short int>;
extern template class cDataRefObj<float>;
extern template class cDataRefObj<double>;
extern template class cDataRefObj<QString>;
extern template class TARNBASE_EXPORT cDataRefObj<QStringList>; // its own visibility would hide the instance
extern template class cDataRefObj<QColor>;
extern template class cDataRefObj<QSize>;
extern template class cDataRefObj<c2DPoint<int>>;
extern template class cDataRefObj<cRect<int>>;
extern template class cDataRefObj<cRange<double>>;
extern template class cDataRefObj<cMatrix<int>>;
extern template class cDataRefObj<cMatrix<float>>;
