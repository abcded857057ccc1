// The one place where the entries of the common types are made.
#include <tarnbase/cDataRefObjImpl.h>

template class cDataRefObj<bool>;
template class cDataRefObj<int>;
template class cDataRefObj<unsigned int>;
template class cDataRefObj<unsigned char>;
template class cDataRefObj<unsigned short int>;
template class cDataRefObj<float>;
template class cDataRefObj<double>;
template class cDataRefObj<QString>;
template class cDataRefObj<QStringList>;
template class cDataRefObj<QColor>;
template class cDataRefObj<QSize>;
template class cDataRefObj<c2DPoint<int>>;
template class cDataRefObj<cRect<int>>;
template class cDataRefObj<cRange<double>>;
template class cDataRefObj<cMatrix<int>>;
template class cDataRefObj<cMatrix<float>>;

template class cDataValObj<bool>;
template class cDataValObj<int>;
template class cDataValObj<unsigned int>;
template class cDataValObj<unsigned char>;
template class cDataValObj<unsigned short int>;
template class cDataValObj<float>;
template class cDataValObj<double>;
template class cDataValObj<QString>;
template class cDataValObj<QStringList>;
template class cDataValObj<QColor>;
template class cDataValObj<QSize>;
template class cDataValObj<c2DPoint<int>>;
template class cDataValObj<cRect<int>>;
template class cDataValObj<cRange<double>>;
template class cDataValObj<cMatrix<int>>;
template class cDataValObj<cMatrix<float>>;
