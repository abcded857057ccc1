#include <tarnbase/cObjIter.h>

#include <tarnbase/cObj.h>

cObjIter::cObjIter(const cObj& i_container) : cObjIter(&i_container) {}

cObjIter::cObjIter(const cObj* i_container)
    : m_container(i_container != nullptr ? i_container : cObj::voidObject())
{
    fetch();
}

cObjIter::~cObjIter() = default;

cObjIter& cObjIter::operator++()
{
    if (isValid()) {
        ++m_index;
        fetch();
    }
    return *this;
}

cObj* cObjIter::operator->() const { return m_entry != nullptr ? m_entry : cObj::voidObject(); }

void cObjIter::fetch()
{
    m_key.clear();
    m_entry = m_container->getIter(m_index, &m_key);
}
