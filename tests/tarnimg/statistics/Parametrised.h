#pragma once

#include <QString>
#include <gtest/gtest.h>
#include <tarnbase/cMapObj.h>

/** A functor whose parameters are set by key and text, as a host sets them. */
template <class Functor> struct Parametrised {
    Functor functor;
    cMapObj params;

    Parametrised() { functor.refreshParams(&params); }
    Parametrised& set(const char* i_key, const QString& i_text)
    {
        EXPECT_TRUE(params.getSubObject(QString::fromLatin1(i_key))->setFromText(i_text)) << i_key;
        return *this;
    }
    /** Writes the member past the check of the text. */
    template <class T> Parametrised& setValue(const char* i_key, const T& i_value)
    {
        EXPECT_TRUE(params.getSubObject(QString::fromLatin1(i_key))->setValue(i_value)) << i_key;
        return *this;
    }
    template <class... Arguments> decltype(auto) operator()(Arguments&&... i_arguments) const
    {
        return functor(std::forward<Arguments>(i_arguments)...);
    }
};
