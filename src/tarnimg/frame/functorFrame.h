#pragma once

#include <QMetaObject>
#include <QString>
#include <QStringList>
#include <customipp/types.h>
#include <iterator>
#include <tarnbase/cDataRefObj.h>
#include <tarnbase/cObj.h>
#include <tarnimg/cImg.h>
#include <tarnimg/cImgFunctor.h>

/**
 * What all functors share: the checks in their order, the failures and their words, parameters, and the
 * look-up of the pixel function for an image.
 */
namespace frame {

/** Throws std::runtime_error with the text in the local 8-bit encoding. */
[[noreturn]] void fail(const QString& i_message);

/** Fails with one of the messages, in which nothing but the operator is open. */
[[noreturn]] void fail(const char* i_message, const char* i_operator);

/** Fails with "%1: %2". */
[[noreturn]] void failBecause(const char* i_reason, const char* i_operator);

/** Fails because of the image's type or channels. */
[[noreturn]] void failUnsupported(const cImg& i_image, const char* i_operator);

/** Fails because two images differ in type or channels, with the message that says so. */
[[noreturn]] void failDiffering(
    const char* i_message, const cImg& i_a, const cImg& i_b, const char* i_operator);

/** A parameter's value that the pixels cannot hold: what they take, and what it acts as. */
struct CutValue {
    const char* param;
    int bits; ///< of a pixel
    double least;
    double greatest;
    double found;
    double actsAs;
    bool isScaled; ///< by a power of two, which a fraction needs and which takes room
};

/** Notes such a value as a misfit of the step that is under way; the step goes on with what it acts as. */
void noteCut(const CutValue& i_value);

/** The image is valid, then supported. */
void checkInput(const cImgFunctor& i_functor, const cImg& i_image, const char* i_operator);

/** Both images are valid; equal types; equal channel counts; equal sizes and pitches; the first one is
 * supported. */
void checkInputs(const cImgFunctor& i_functor, const cImg& i_a, const cImg& i_b, const char* i_operator);

/** Any status but 0 is a failure of the operator, warnings included. */
void checkStatus(IppStatus i_status, const char* i_operator);

/** A new one-channel image of the type and size of another; its pixels are undefined, it has no attributes.
 */
cImg resultLike(const cImg& i_image);

/** Enters a member as a parameter. */
template <class T> void bindParam(cObj* i_params, const char* i_key, T& i_member)
{
    i_params->setSubObject(new cDataRefObj<T>(i_member, 0), QString::fromLatin1(i_key), true);
}

/** Enters a member that holds one of a list of texts. */
void bindChoiceParam(cObj* i_params, const char* i_key, QString& i_member, const QStringList& i_choices);

/** Enters a member that holds the key of an enumerator, with the list of allowed keys. */
void bindEnumParam(cObj* i_params, const char* i_key, QString& i_member, const QMetaObject& i_class,
    const char* i_enumeration);

/** The value of an enumerator by its key; 0 for a key that the enumeration does not have. */
int enumValue(const QMetaObject& i_class, const char* i_enumeration, const QString& i_key);

/** The row of a functor's table for the image's type, or null. */
template <class Table>
auto find(const Table& i_variants, const cImg& i_image) -> decltype(std::data(i_variants))
{
    for (const auto& variant : i_variants) {
        if (variant.type == i_image.getImgType().getTypeId())
            return &variant;
    }
    return nullptr;
}

} // namespace frame
