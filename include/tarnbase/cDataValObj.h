#pragma once

#include <tarnbase/cDataRefObj.h>

/** An entry of the property tree with storage of its own. */
template <class T> class TARNBASE_EXPORT cDataValObj : public cDataRefObj<T> {
public:
    explicit cDataValObj(const T& i_data = T(), quint32 i_flags = 0);
    ~cDataValObj() override;

    cObj* clone() const override;

private:
    T m_value;
};

extern template class cDataValObj<bool>;
extern template class cDataValObj<int>;
extern template class cDataValObj<unsigned int>;
extern template class cDataValObj<unsigned char>;
extern template class cDataValObj<unsigned short int>;
extern template class cDataValObj<float>;
extern template class cDataValObj<double>;
extern template class cDataValObj<QString>;
extern template class TARNBASE_EXPORT cDataValObj<QStringList>; // its own visibility would hide the instance
extern template class cDataValObj<QColor>;
extern template class cDataValObj<QSize>;
extern template class cDataValObj<c2DPoint<int>>;
extern template class cDataValObj<cRect<int>>;
extern template class cDataValObj<cRange<double>>;
extern template class cDataValObj<cMatrix<int>>;
extern template class cDataValObj<cMatrix<float>>;
