#include "functorFrame.h"

#include "messages.h"

#include <QMetaEnum>
#include <customipp/customipp.h>
#include <stdexcept>
#include <tarnbase/cDataValObj.h>
#include <tarnflow/cGraphError.h>
#include <tarnflow/cStepScope.h>
#include <tarnimg/checkIPPStatus.h>

namespace frame {

static QString message(const char* i_template, const char* i_operator)
{
    return QString::fromLatin1(i_template).arg(QString::fromLatin1(i_operator));
}

static void checkSupported(const cImgFunctor& i_functor, const cImg& i_image, const char* i_operator)
{
    if (!i_functor.isSupported(i_image))
        failUnsupported(i_image, i_operator);
}

void fail(const QString& i_message) { throw std::runtime_error(i_message.toLocal8Bit().constData()); }

void fail(const char* i_message, const char* i_operator) { fail(message(i_message, i_operator)); }

void failBecause(const char* i_reason, const char* i_operator)
{
    fail(message(s_failure, i_operator).arg(QString::fromLatin1(i_reason)));
}

void failUnsupported(const cImg& i_image, const char* i_operator)
{
    cStepScope::noteMisfit({{},
        QStringLiteral("does not take the images that reach it, found %1")
            .arg(cSupportedImages::describe(i_image)),
        {}});
    fail(message(s_unsupportedImage, i_operator)
             .arg(i_image.getImgType().getName())
             .arg(i_image.getNumChannels()));
}

void failDiffering(const char* i_message, const cImg& i_a, const cImg& i_b, const char* i_operator)
{
    cStepScope::noteMisfit({{},
        QStringLiteral("the images that meet in it differ, expected one pixel type, found %1 and %2")
            .arg(cSupportedImages::describe(i_a), cSupportedImages::describe(i_b)),
        {}});
    fail(i_message, i_operator);
}

void noteCut(const CutValue& i_value)
{
    const auto text = [](double i_number) { return QString::number(i_number, 'g', 7); };
    cStepScope::noteMisfit({QString::fromLatin1(i_value.param),
        QStringLiteral("does not fit into %1-bit pixels, expected a number from %2 to %3, found %4, which "
                       "would act as %5")
            .arg(i_value.bits)
            .arg(text(i_value.least), text(i_value.greatest), text(i_value.found), text(i_value.actsAs)),
        i_value.isScaled
            ? QStringLiteral("give short binary fractions, such as 1.25, which leave more room")
            : QStringLiteral("give a number of this range, or convert the images to a type that holds it")});
}

void checkInput(const cImgFunctor& i_functor, const cImg& i_image, const char* i_operator)
{
    if (!i_image.isValid())
        fail(s_invalidImage, i_operator);
    checkSupported(i_functor, i_image, i_operator);
}

void checkInputs(const cImgFunctor& i_functor, const cImg& i_a, const cImg& i_b, const char* i_operator)
{
    if (!i_a.isValid() || !i_b.isValid())
        fail(s_invalidImage, i_operator);
    if (i_a.getImgType().getTypeId() != i_b.getImgType().getTypeId())
        failDiffering(s_typesMustBeEqual, i_a, i_b, i_operator);
    if (i_a.getNumChannels() != i_b.getNumChannels())
        failDiffering(s_channelsMustBeEqual, i_a, i_b, i_operator);
    if (!i_a.isStructOf(i_b))
        fail(s_sizesMustBeEqual, i_operator);
    checkSupported(i_functor, i_a, i_operator);
}

void checkStatus(IppStatus i_status, const char* i_operator)
{
    if (i_status != ippStsNoErr)
        failBecause(ippGetStatusString(i_status), i_operator);
}

cImg resultLike(const cImg& i_image)
{
    return cImg(i_image.getImgType().getTypeId(), i_image.getWidth(), i_image.getHeight(), 1);
}

void bindChoiceParam(cObj* i_params, const char* i_key, QString& i_member, const QStringList& i_choices)
{
    bindParam(i_params, i_key, i_member);
    i_params->getSubObject(QString::fromLatin1(i_key))
        ->setEnumeration(new cDataValObj<QStringList>(i_choices, 0));
}

void bindEnumParam(cObj* i_params, const char* i_key, QString& i_member, const QMetaObject& i_class,
    const char* i_enumeration)
{
    const QMetaEnum enumeration = i_class.enumerator(i_class.indexOfEnumerator(i_enumeration));
    QStringList keys;
    for (int i = 0; i < enumeration.keyCount(); ++i)
        keys.append(QString::fromLatin1(enumeration.key(i)));
    bindChoiceParam(i_params, i_key, i_member, keys);
}

int enumValue(const QMetaObject& i_class, const char* i_enumeration, const QString& i_key)
{
    const QMetaEnum enumeration = i_class.enumerator(i_class.indexOfEnumerator(i_enumeration));
    const int value = enumeration.keyToValue(i_key.toUtf8().constData());
    return value == -1 ? 0 : value;
}

} // namespace frame

void checkIPPStatus(IppStatus i_status) { frame::checkStatus(i_status, "checkIPPStatus"); }
