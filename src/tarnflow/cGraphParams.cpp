#include <tarnflow/cGraph.h>

#include "cFlow.h"
#include "graphErrors.h"

#include <tarnbase/cObj.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>

#include <QVariantList>
#include <limits>
#include <memory>

using graphErrors::fail;
using graphErrors::quoted;

/** A parameter and what it belongs to. */
struct cGraph::cPlace {
    cObj* entry = nullptr;
    cDfpNode* node = nullptr;
    cPortBase* port = nullptr; ///< null for a parameter of the node itself
};

namespace {
constexpr int s_lockStep = 20; // milliseconds

void addKeys(const cMapObj& i_map, const QString& i_prefix, QStringList& io_keys)
{
    for (const QString& key : i_map.getKeys()) {
        const cObj* entry = i_map.getSubObject(key);
        if (const auto* map = dynamic_cast<const cMapObj*>(entry))
            addKeys(*map, i_prefix + key + QLatin1Char('/'), io_keys);
        else
            io_keys.append(i_prefix + key);
    }
}

QStringList keysOf(cDfpNode& i_node)
{
    QStringList keys;
    addKeys(i_node.getParams(), QString(), keys);
    const auto addPortKeys
        = [&](cPortBase* port) { addKeys(port->getParams(), port->getName() + QLatin1Char('.'), keys); };
    for (cIPortBase* port : i_node.getInports())
        addPortKeys(port);
    for (cOPortBase* port : i_node.getOutports())
        addPortKeys(port);
    return keys;
}

/** Whether a number keeps to the bounds that its entry declares. */
bool isInRange(const cObj& i_declared, const cObj& i_value, QString* o_message)
{
    double value = 0;
    if (!i_value.getValue(value))
        return true;
    double least = -std::numeric_limits<double>::infinity();
    double greatest = std::numeric_limits<double>::infinity();
    const bool hasLeast = i_declared.getMetaData(QStringLiteral("min"))->getValue(least);
    const bool hasGreatest = i_declared.getMetaData(QStringLiteral("max"))->getValue(greatest);
    if (value >= least && value <= greatest)
        return true;
    const QString expected = hasLeast && hasGreatest
        ? QStringLiteral("a number from %1 to %2").arg(least).arg(greatest)
        : hasLeast ? QStringLiteral("a number of at least %1").arg(least)
                   : QStringLiteral("a number of at most %1").arg(greatest);
    *o_message = QStringLiteral("expected %1, found %2").arg(expected).arg(value);
    return false;
}

/** The text form of a list, such as "5,5"; null if it has none. */
QString textOf(const QVariant& i_value)
{
    if (i_value.type() == QVariant::List || i_value.type() == QVariant::StringList) {
        QStringList texts;
        for (const QVariant& element : i_value.toList())
            texts.append(element.toString());
        return texts.join(QLatin1Char(','));
    }
    switch (int(i_value.type())) {
    case QMetaType::Double:
        return QString::number(i_value.toDouble(), 'g', std::numeric_limits<double>::max_digits10);
    case QMetaType::Float:
        return QString::number(i_value.toFloat(), 'g', std::numeric_limits<float>::max_digits10);
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::QString:
        return i_value.toString();
    default:
        return QString();
    }
}
} // namespace

bool cGraph::findPlace(const QString& i_path, cPlace& o_place, cGraphError* o_error) const
{
    const int dot = i_path.indexOf(QLatin1Char('.'));
    if (dot < 0)
        return fail(
            o_error, i_path, QStringLiteral("a parameter is named \"node.key\" or \"node.port.key\""));
    o_place.node = needNode(i_path.left(dot), o_error);
    if (!o_place.node)
        return false;
    const QString key = i_path.mid(dot + 1);
    o_place.entry = o_place.node->getParams().getSubObject(key);
    const int second = key.indexOf(QLatin1Char('.'));
    if (o_place.entry->isVoid() && second >= 0) {
        const QString port = key.left(second);
        o_place.port = o_place.node->getInport(port);
        if (!o_place.port)
            o_place.port = o_place.node->getOutport(port);
        if (o_place.port)
            o_place.entry = o_place.port->getParams().getSubObject(key.mid(second + 1));
    }
    if (!key.isEmpty() && !o_place.entry->isVoid())
        return true;
    const QStringList known = keysOf(*o_place.node);
    return fail(o_error, i_path, QStringLiteral("there is no parameter %1").arg(quoted(key)),
        known.isEmpty() ? QStringLiteral("this node has no parameters")
                        : graphErrors::suggest(key, known, QStringLiteral("parameters")));
}

cObj* cGraph::findParam(const QString& i_path, cGraphError* o_error) const
{
    cPlace place;
    return findPlace(i_path, place, o_error) ? place.entry : nullptr;
}

QString cGraph::getParam(const QString& i_path, cGraphError* o_error) const
{
    cPlace place;
    if (!findPlace(i_path, place, o_error))
        return QString();
    const QString text = place.entry->toText();
    return text.isNull() ? QLatin1String("") : text;
}

bool cGraph::writeParam(
    const QString& i_path, const std::function<bool(cObj&, QString*)>& i_write, cGraphError* o_error)
{
    cPlace place;
    if (!findPlace(i_path, place, o_error))
        return false;
    cObj* entry = place.entry;
    if (entry->isContainer())
        return fail(o_error, i_path, QStringLiteral("is a group of parameters, not a value"));
    if (entry->getFlags() & cObj::ObjReadOnly)
        return fail(o_error, i_path, QStringLiteral("the parameter can only be read"));

    // A copy takes the value first: whatever is wrong shows before anything of the station changes.
    const std::unique_ptr<cObj> trial(entry->clone());
    entry->copyProps(*trial);
    QString message;
    if (!i_write(*trial, &message) || !isInRange(*entry, *trial, &message))
        return fail(o_error, i_path, message,
            entry->getChoices().isEmpty()
                ? QString()
                : graphErrors::suggest(trial->toText(), entry->getChoices(), QStringLiteral("allowed")));

    if (auto* station = dynamic_cast<cStation*>(place.node)) {
        QMutex& mutex = station->getInputMutex();
        bool locked = false;
        while (!(locked = mutex.tryLock(s_lockStep)) && !station->isDead())
            if (getFlowOfRoot() == EFlow::Stalled)
                return fail(o_error, i_path,
                    QStringLiteral("the station is in a step that waits for a buffer"),
                    QStringLiteral("stop the graph first"));
        entry->assign(trial.get());
        if (locked)
            mutex.unlock();
    } else {
        entry->assign(trial.get());
    }
    if (place.port)
        const_cast<cGraph*>(this)->getRoot()->updateRooms();
    return true;
}

cGraph::EFlow cGraph::getFlowOfRoot() const { return flowOf(this)->getState(); }

bool cGraph::setParam(const QString& i_path, const QString& i_text, cGraphError* o_error)
{
    return writeParam(
        i_path, [&](cObj& entry, QString* message) { return entry.setFromText(i_text, message); }, o_error);
}

bool cGraph::setParam(const QString& i_path, const QVariant& i_value, cGraphError* o_error)
{
    const QString text = textOf(i_value);
    if (!text.isNull())
        return setParam(i_path, text, o_error);
    return writeParam(
        i_path,
        [&](cObj& entry, QString* message) {
            QVariant converted = i_value;
            if (i_value.isValid() && converted.convert(entry.toVariant().userType())) {
                entry.fromVariant(converted);
                return true;
            }
            *message = QStringLiteral("expected %1, found %2")
                           .arg(entry.getTypeName(),
                               QString::fromLatin1(i_value.isValid() ? i_value.typeName() : "nothing"));
            return false;
        },
        o_error);
}
