#include <tarnbase/cObj.h>

#include "textForm.h"
#include "treeText.h"

#include <tarnbase/cDataValObj.h>
#include <tarnbase/cObjIter.h>
#include <tarnbase/cWriteFormat.h>

#include <QVariant>

#include <algorithm>
#include <map>

struct cObj::Extra {
    std::unique_ptr<cWriteFormat> format;
    std::unique_ptr<cObj> enumeration;
    std::map<QString, std::unique_ptr<cObj>> metaData;
};

namespace {

// What an entry was offered for keeps. The null object is nobody's.
std::unique_ptr<cObj> takeOver(cObj* i_object)
{
    return std::unique_ptr<cObj>(i_object != nullptr && !i_object->isVoid() ? i_object : nullptr);
}

} // namespace

cObj::cObj(const cObjType* i_type) : m_type(i_type != nullptr ? i_type : cObjType::findType(typeid(void))) {}

cObj::~cObj() = default;

cObj* cObj::voidObject()
{
    static cObj* const s_void = new cObj(nullptr);
    return s_void;
}

bool cObj::isMap() const { return false; }
bool cObj::isVector() const { return false; }
bool cObj::isContainer() const { return false; }
unsigned int cObj::getNumEntries() const { return 0; }
cObj* cObj::getSubObject(unsigned int) const { return voidObject(); }
cObj* cObj::getSubObject(const QString&) const { return voidObject(); }

bool cObj::setSubObject(cObj* i_object, unsigned int, bool i_own)
{
    if (i_own && i_object != this)
        takeOver(i_object);
    return false;
}

bool cObj::setSubObject(cObj* i_object, const QString&, bool i_own)
{
    if (i_own && i_object != this)
        takeOver(i_object);
    return false;
}

cObj* cObj::clone() const
{
    cObj* const copy = new cObj(m_type);
    copyProps(*copy);
    return copy;
}

void cObj::clear() {}
bool cObj::assign(const cObj*) { return false; }

cObj& cObj::operator<<(cObj* i_object)
{
    if (i_object != this)
        takeOver(i_object);
    return *this;
}

bool cObj::isEqual(const cObj*) const { return false; }
bool cObj::isNotEqual(const cObj* i_other) const { return !isEqual(i_other); }
bool cObj::merge(const cObj*, QFlags<ObjMergeFlag>) { return false; }
QVariant cObj::toVariant() const { return QVariant(); }
void cObj::fromVariant(const QVariant&) {}
void* cObj::getData() const { return nullptr; }
int cObj::indexOf(const cObj*) const { return -1; }
QString cObj::getKeyOfChild(const cObj*) const { return QString(); }
cObj* cObj::getIter(unsigned int, QString*) const { return nullptr; }
bool cObj::getAs(const std::type_info&, void*) const { return false; }
bool cObj::setFrom(const std::type_info&, const void*) { return false; }
void cObj::removeSubObject(const QString&) {}

QString cObj::getTypeName() const { return m_type->getName(); }

cObj::Extra& cObj::extra()
{
    if (!m_extra)
        m_extra = std::make_unique<Extra>();
    return *m_extra;
}

void cObj::setFlags(QFlags<EObjFlag> i_flags)
{
    if (!isVoid())
        m_flags = i_flags;
}

const cWriteFormat* cObj::getFormat() const { return m_extra ? m_extra->format.get() : nullptr; }

void cObj::setFormat(const cWriteFormat& i_format)
{
    if (!isVoid())
        extra().format = std::make_unique<cWriteFormat>(i_format);
}

QString cObj::toString(bool i_formatted) const
{
    if (isContainer())
        return treeText::write(*this).text;
    const cWriteFormat* const format = i_formatted ? getFormat() : nullptr;
    const std::type_info& type = *m_type->getTypeInfo();
    double number = 0.0;
    if (format == nullptr || type == typeid(bool) || type == typeid(QString) || !getValue(number))
        return toText();
    if (type == typeid(float) || type == typeid(double))
        return QString::number(number, format->notation, std::clamp(format->precision, 0, 100));
    return QString::number(qint64(number), std::clamp(format->base, 2, 36));
}

QString cObj::toText() const
{
    const void* const data = getData();
    return data != nullptr ? m_type->toText(data) : QString();
}

bool cObj::setFromText(const QString& i_text, QString* o_error)
{
    const std::unique_ptr<cObj> value(m_type->hasTextForm() ? m_type->create() : nullptr);
    if (!value) {
        if (o_error != nullptr)
            *o_error = QLatin1String("expected no text, as this entry holds no single value, found ")
                + textForm::quote(i_text);
        return false;
    }
    if (!m_type->fromText(i_text, value->getData(), o_error))
        return false;
    const QStringList choices = getChoices();
    if (!choices.isEmpty() && !choices.contains(value->toText())) {
        if (o_error != nullptr)
            *o_error
                = textForm::complaint(QLatin1String("one of ") + choices.join(QLatin1String(", ")), i_text);
        return false;
    }
    return assign(value.get());
}

void cObj::copyProps(cObj& o_target) const
{
    if (&o_target == this || o_target.isVoid())
        return;
    o_target.m_flags = m_flags;
    o_target.m_extra.reset();
    if (!m_extra)
        return;
    if (m_extra->format)
        o_target.setFormat(*m_extra->format);
    if (m_extra->enumeration)
        o_target.setEnumeration(m_extra->enumeration->clone());
    for (const auto& [key, data] : m_extra->metaData)
        o_target.setMetaData(key, data->clone());
}

void cObj::setEnumeration(cObj* i_keys)
{
    if (i_keys == this)
        return;
    std::unique_ptr<cObj> keys = takeOver(i_keys);
    if (!isVoid())
        extra().enumeration = std::move(keys);
}

cObj* cObj::getEnumeration() const
{
    return m_extra && m_extra->enumeration ? m_extra->enumeration.get() : voidObject();
}

void cObj::setMetaData(const QString& i_key, cObj* i_data)
{
    if (i_data == this)
        return;
    std::unique_ptr<cObj> data = takeOver(i_data);
    if (isVoid())
        return;
    if (data)
        extra().metaData[i_key] = std::move(data);
    else if (m_extra)
        m_extra->metaData.erase(i_key);
}

cObj* cObj::getMetaData(const QString& i_key) const
{
    if (m_extra) {
        const auto entry = m_extra->metaData.find(i_key);
        if (entry != m_extra->metaData.end())
            return entry->second.get();
    }
    return voidObject();
}

QStringList cObj::getMetaDataKeys() const
{
    QStringList keys;
    if (m_extra)
        for (const auto& entry : m_extra->metaData)
            keys.append(entry.first);
    return keys;
}

QStringList cObj::getChoices() const
{
    QStringList choices;
    if (!getEnumeration()->getValue(choices))
        getMetaData(QStringLiteral("choice"))->getValue(choices);
    return choices;
}

void cObj::fireChangedSignal()
{
    if (!isVoid())
        Q_EMIT changed();
}

void cObj::connectChangedSignal(
    const QObject* i_receiver, const char* i_slot, bool i_recursive, Qt::ConnectionType i_type)
{
    if (i_receiver == nullptr || i_slot == nullptr || isVoid())
        return;
    connect(this, SIGNAL(changed()), i_receiver, i_slot, i_type);
    if (i_recursive)
        for (cObjIter entry(*this); entry.isValid(); ++entry)
            entry->connectChangedSignal(i_receiver, i_slot, true, i_type);
}

void cObj::remove(const QString& i_path)
{
    const int slash = i_path.lastIndexOf(QLatin1Char('/'));
    cObj* const container = slash < 0 ? this : getSubObject(i_path.left(slash));
    container->removeSubObject(i_path.mid(slash + 1));
}

bool cObj::write(QTextStream& io_stream) const { return treeText::write(*this, io_stream); }
bool cObj::readStream(QTextStream& io_stream) { return treeText::read(*this, io_stream); }

#include "moc_cObj.cpp"
