#include "commands.h"

#include "hostStations.h"

#include <algorithm>
#include <memory>
#include <tarnbase/cMapObj.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>
#include <tarnflow/cStation.h>
#include <tarnflow/cValueText.h>
#include <tarnimg/cIPortImg.h>
#include <tarnimg/cOPortImg.h>

namespace host {
namespace {

QString describeImages(const cSupportedImages& i_images)
{
    const QString kinds = i_images.toText();
    return kinds.isEmpty() ? QStringLiteral("image of any type") : QStringLiteral("image: ") + kinds;
}

/** What people call the values of a port that carries no images. */
QString typeName(const std::type_info& i_type)
{
    const cObjType* type = cObjType::findType(i_type);
    return type && type->getTypeInfo() && *type->getTypeInfo() != typeid(void)
        ? type->getName()
        : QString::fromLatin1(i_type.name());
}

struct Row {
    QString key;
    QString type;
    QString value;
    QString meaning;
};

/** The parameters below a map, with their paths as they are written in a graph. */
void collect(const cObj& i_map, const QString& i_prefix, const cStationInfo& i_info, QList<Row>& io_rows)
{
    for (unsigned i = 0; i < i_map.getNumEntries(); ++i) {
        const cObj* entry = i_map.getSubObject(i);
        const QString path = i_prefix + i_map.getKeyOfChild(entry);
        if (entry->isContainer()) {
            collect(*entry, path + u'/', i_info, io_rows);
            continue;
        }
        const auto word = std::find_if(i_info.params.begin(), i_info.params.end(),
            [&](const cStationInfo::Param& i_param) { return i_param.key == path; });
        QString meaning = word == i_info.params.end() ? QString() : word->meaning;
        const QStringList choices = entry->getChoices();
        if (!choices.isEmpty())
            meaning += (meaning.isEmpty() ? QString() : QStringLiteral("; ")) + QStringLiteral("one of ")
                + choices.join(QStringLiteral(", "));
        const cObj* most = entry->getMetaData(QStringLiteral("max"));
        if (!most->isVoid())
            meaning += (meaning.isEmpty() ? QString() : QStringLiteral("; ")) + QStringLiteral("at most ")
                + most->toText();
        const QString text = entry->toText();
        io_rows.append({path, choices.isEmpty() ? entry->getTypeName() : QStringLiteral("key"),
            text.isEmpty() ? QStringLiteral("\"\"") : text, meaning});
    }
}

constexpr int s_lineLength = 100;

/** Text cut at blanks, so that no line is longer than it must be; lines after the first are indented. */
QString wrapped(const QString& i_text, int i_indent)
{
    QString text, line;
    const QStringList words = i_text.split(u' ', Qt::SkipEmptyParts);
    for (const QString& word : words) {
        if (!line.isEmpty() && i_indent + line.size() + 1 + word.size() > s_lineLength) {
            text += line + u'\n' + QString(i_indent, u' ');
            line.clear();
        }
        line += (line.isEmpty() ? QString() : QStringLiteral(" ")) + word;
    }
    return text + line;
}

QString table(const QList<Row>& i_rows)
{
    int key = 0, type = 0, value = 0;
    for (const Row& row : i_rows) {
        key = std::max(key, int(row.key.size()));
        type = std::max(type, int(row.type.size()));
        value = std::max(value, int(row.value.size()));
    }
    QString text;
    for (const Row& row : i_rows) {
        // Ports have no value column: their second one is the text.
        QString line = QStringLiteral("  ") + row.key.leftJustified(key) + QStringLiteral("  ");
        if (value == 0)
            line += wrapped(
                row.type + (row.meaning.isEmpty() ? QString() : QStringLiteral("; ") + row.meaning), key + 4);
        else
            line += row.type.leftJustified(type) + QStringLiteral("  ") + row.value.leftJustified(value)
                + QStringLiteral("  ") + wrapped(row.meaning, key + type + value + 8);
        while (line.endsWith(u' '))
            line.chop(1);
        text += line + u'\n';
    }
    return text;
}

/** The shortest end of an identifier by which a graph can name the station. */
QString shortName(const QString& i_identifier)
{
    QString name = i_identifier.section(u'/', -1);
    for (int parts = 2; cStation::resolveIdentifier(name).size() > 1; ++parts)
        name = i_identifier.section(u'/', -parts);
    return name;
}

/** A whole line that runs: a source of files for each image input, a sink for an image output. */
QString exampleLine(const QString& i_identifier, const cStationInfo& i_info, const cStation& i_station)
{
    if (const auto* own = dynamic_cast<const cHostStation*>(&i_station); own && !own->getExample().isEmpty())
        return own->getExample();
    QString self = shortName(i_identifier);
    if (i_info.mainParam == QLatin1String("path"))
        self += i_station.getInports().isEmpty() ? QStringLiteral(" in/*.png")
                                                 : QStringLiteral(" out/{stem}.png");
    QStringList imageInputs;
    const auto inports = i_station.getInports();
    for (const cIPortBase* port : inports)
        if (dynamic_cast<const cIPort<cImg>*>(port))
            imageInputs.append(port->getName());
    const auto outports = i_station.getOutports();
    const bool gives = std::any_of(outports.begin(), outports.end(),
        [](const cOPortBase* i_port) { return dynamic_cast<const cOPort<cImg>*>(i_port); });
    const QString sink = gives ? QStringLiteral(" ! save out/{stem}.tif") : QString();
    if (imageInputs.isEmpty())
        return self + sink;
    if (imageInputs.size() == 1)
        return QStringLiteral("files in/*.png ! ") + self + sink;
    QString line;
    QChar folder = u'a';
    for (const QString& input : qAsConst(imageInputs)) {
        line += QStringLiteral("files %1/*.png ! x.%2   ").arg(folder).arg(input);
        folder = QChar(folder.unicode() + 1);
    }
    return line + self + QStringLiteral(" name=x") + sink;
}

} // namespace

QString describeValues(const cPortBase& i_port)
{
    if (const auto* input = dynamic_cast<const cIPort<cImg>*>(&i_port))
        return describeImages(input->getSupportedImages());
    if (const auto* output = dynamic_cast<const cOPort<cImg>*>(&i_port))
        return describeImages(output->getSupportedImages());
    return typeName(i_port.getTypeID());
}

QString describeStation(const QString& i_identifier, cStation& i_station)
{
    const cStationInfo info = cStation::getInfo(i_identifier);
    QString text = i_identifier + u'\n';
    if (!info.summary.isEmpty())
        text += QStringLiteral("  ") + info.summary + u'\n';

    QList<Row> rows;
    const auto inports = i_station.getInports();
    for (const cIPortBase* port : inports)
        rows.append({port->getName(), describeValues(*port), {}, port->getDescription()});
    text += rows.isEmpty() ? QString() : QStringLiteral("\ninputs\n") + table(rows);
    rows.clear();
    const auto outports = i_station.getOutports();
    for (const cOPortBase* port : outports)
        rows.append({port->getName(), describeValues(*port), {}, port->getDescription()});
    text += rows.isEmpty() ? QString() : QStringLiteral("\noutputs\n") + table(rows);

    rows.clear();
    collect(i_station.getParams(), QString(), info, rows);
    for (Row& row : rows)
        if (row.key == info.mainParam)
            row.meaning += QStringLiteral(" (main parameter: a word after the name)");
    for (cIPortBase* port : inports) {
        QList<Row> own;
        collect(port->getParams(), port->getName() + u'.', info, own);
        for (Row& row : own)
            if (row.meaning.isEmpty() && row.key.endsWith(QLatin1String(".delay")))
                row.meaning = QStringLiteral("how many matches back the frame at this input comes from");
        rows += own;
    }
    text += rows.isEmpty() ? QString() : QStringLiteral("\nparameters\n") + table(rows);

    if (!info.notes.isEmpty()) {
        text += QStringLiteral("\nnotes\n");
        for (const QString& note : info.notes)
            text += QStringLiteral("  - ") + wrapped(note, 4) + u'\n';
    }
    return text + QStringLiteral("\nexample\n  tarn run -e '") + exampleLine(i_identifier, info, i_station)
        + QStringLiteral("'\n");
}

} // namespace host
