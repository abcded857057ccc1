#include <QFile>
#include <QMetaEnum>
#include <QTextStream>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <tarnbase/cObjIter.h>
#include <tarnflow/cPortGroupBase.h>
#include <tarnflow/cStation.h>
#include <tarnimg/cIPortImg.h>
#include <tarnimg/tarnimg.h>

namespace {

/** What the table says about a station, or what the station says about itself. */
struct Contract {
    QString inputs;
    QString outputs;
    QString params;
};

std::map<QString, Contract> table()
{
    QFile file(QStringLiteral(TARN_STATIONS_TABLE));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    std::map<QString, Contract> result;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        if (line.startsWith(QLatin1Char('#')))
            continue;
        QStringList columns = line.split(QLatin1Char('\t'));
        while (columns.size() < 4)
            columns.append(QString());
        result[columns[0]] = {columns[1], columns[2], columns[3]};
    }
    return result;
}

QString typeName(const std::type_info& i_type)
{
    if (i_type == typeid(cImg))
        return QStringLiteral("cImg");
    return QString::fromLatin1(i_type.name());
}

QString describe(const cIPortBase* i_port)
{
    QString text = i_port->getName() + QLatin1Char(' ') + typeName(i_port->getTypeID());
    if (const auto* image = dynamic_cast<const cIPort<cImg>*>(i_port)) {
        QStringList types;
        for (const auto& [type, channels] : image->getSupportedTypes())
            types.append(
                QStringLiteral("%1/%2")
                    .arg(QString::fromLatin1(QMetaEnum::fromType<cImgType::ImageTypes>().valueToKey(type)))
                    .arg(channels));
        text += QStringLiteral("[%1]").arg(types.join(QLatin1Char(',')));
    }
    return text;
}

Contract describe(const cStation& i_station)
{
    QStringList inputs;
    for (const cIPortBase* port : i_station.getInports())
        inputs.append(describe(port));
    QStringList outputs;
    for (const cOPortBase* port : i_station.getOutports())
        outputs.append(port->getName() + QLatin1Char(' ') + typeName(port->getTypeID()));
    QStringList params;
    const cMapObj& map = i_station.getParams();
    for (unsigned i = 0; i < map.getNumEntries(); ++i) {
        const cObj* entry = map.getSubObject(i);
        QString text = map.getKeyOfChild(entry) + QLatin1Char(' ') + entry->getTypeName() + QLatin1Char('=')
            + entry->toText();
        if (!entry->getChoices().isEmpty())
            text += QStringLiteral("{%1}").arg(entry->getChoices().join(QLatin1Char(',')));
        params.append(text);
    }
    const QString separator = QStringLiteral("; ");
    return {inputs.join(separator), outputs.join(separator), params.join(separator)};
}

} // namespace

TEST(everyStation, IsInTheTableAndTheTableHasNoOther)
{
    std::set<QString> listed;
    for (const auto& [identifier, contract] : table())
        listed.insert(identifier);
    std::set<QString> registered;
    for (const QString& identifier : cStation::getIdentifiers())
        registered.insert(identifier);
    EXPECT_EQ(registered, listed);
}

TEST(everyStation, HasThePortsAndParametersOfItsLine)
{
    for (const auto& [identifier, contract] : table()) {
        const std::unique_ptr<cStation> station(cStation::create(identifier));
        ASSERT_NE(station, nullptr) << identifier.toStdString();
        const Contract actual = describe(*station);
        EXPECT_EQ(actual.inputs, contract.inputs) << identifier.toStdString();
        EXPECT_EQ(actual.outputs, contract.outputs) << identifier.toStdString();
        EXPECT_EQ(actual.params, contract.params) << identifier.toStdString();
        EXPECT_TRUE(station->getName().isEmpty()) << identifier.toStdString();
    }
}

TEST(everyStation, SaysWhatItIsForAndExplainsEachOfItsParameters)
{
    for (const QString& identifier : cStation::getIdentifiers()) {
        const cStationInfo info = cStation::getInfo(identifier);
        EXPECT_TRUE(info.summary.endsWith(QLatin1Char('.'))) << identifier.toStdString();
        const std::unique_ptr<cStation> station(cStation::create(identifier));
        const cMapObj& params = station->getParams();
        EXPECT_EQ(unsigned(info.params.size()), params.getNumEntries()) << identifier.toStdString();
        for (const cStationInfo::Param& param : info.params) {
            EXPECT_TRUE(params.contains(param.key))
                << identifier.toStdString() << ": " << param.key.toStdString();
            EXPECT_FALSE(param.meaning.isEmpty())
                << identifier.toStdString() << ": " << param.key.toStdString();
        }
    }
}

TEST(everyStation, HasAMemberOfItsOwnForEachParameter)
{
    const auto textsOf = [](const cMapObj& params) {
        QStringList texts;
        for (unsigned i = 0; i < params.getNumEntries(); ++i)
            texts.append(params.getSubObject(i)->toText());
        return texts;
    };
    for (const QString& identifier : cStation::getIdentifiers()) {
        const std::unique_ptr<cStation> station(cStation::create(identifier));
        const cMapObj& params = station->getParams();
        for (unsigned i = 0; i < params.getNumEntries(); ++i) {
            cObj* entry = params.getSubObject(i);
            const QString key = params.getKeyOfChild(entry);
            QStringList expected = textsOf(params);
            // Something that the type takes, and that is not there yet.
            QStringList candidates = entry->getChoices();
            for (const char* text : {"7", "true", "false", "#010203", "7x9", "7,9", "1,2,3,4", "1,2;3,4"})
                candidates.append(QString::fromLatin1(text));
            for (const QString& text : candidates) {
                if (entry->setFromText(text) && entry->toText() != expected[int(i)])
                    break;
            }
            EXPECT_NE(entry->toText(), expected[int(i)])
                << identifier.toStdString() << ": " << key.toStdString() << ", "
                << entry->getTypeName().toStdString();
            expected[int(i)] = entry->toText();
            EXPECT_EQ(textsOf(params), expected) << identifier.toStdString() << ": " << key.toStdString();
        }
    }
}

TEST(everyStation, HasADelayOnEachInputOfItsGroup)
{
    for (const QString& identifier : cStation::getIdentifiers()) {
        const std::unique_ptr<cStation> station(cStation::create(identifier));
        for (cPortGroupBase* group : station->getPortGroups()) {
            for (cIPortBase* port : group->getPorts()) {
                EXPECT_EQ(
                    port->getParams().getSubObject(QStringLiteral("delay"))->toText(), QStringLiteral("0"));
                EXPECT_EQ(port->getDefaultParams().getSubObject(QStringLiteral("delay"))->toText(),
                    QStringLiteral("0"));
            }
        }
    }
}
