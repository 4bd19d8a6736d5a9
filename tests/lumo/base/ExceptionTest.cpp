// Tests of the exceptions: fields and message ownership, copies, class records and
// bases, exceptions that carry a text, and the system's error text.
#include <lumo/base/ClassNotFoundException.h>
#include <lumo/base/Exception.h>
#include <lumo/base/win/WinSystemErrorException.h>
#include <lumo/io/IOException.h>
#include <lumo/io/UnsupportedEncodingException.h>
#include <lumo/net/SocketException.h>
#include <lumo/net/UnknownHostException.h>
#include <lumo/util/NoSuchElementException.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <utility>

using namespace lumo::base;

TEST(Exception, FieldsAndMessageOwnership) {
    char text[] = "temporary";
    CException e("lumo/base/Test", 42, "Something failed.", text);
    text[0] = 'X';
    EXPECT_STREQ(e.GetSourceFile(), "lumo/base/Test");
    EXPECT_EQ(e.GetSourceLine(), 42u);
    EXPECT_STREQ(e.GetErrorDescription(), "Something failed.");
    EXPECT_STREQ(e.GetMessage(), "temporary");

    EXPECT_TRUE(e.SetMessage(""));
    EXPECT_EQ(e.GetMessage(), nullptr);
    EXPECT_TRUE(e.SetMessage("again"));
    EXPECT_STREQ(e.GetMessage(), "again");
    EXPECT_TRUE(e.SetMessage(nullptr));
    EXPECT_EQ(e.GetMessage(), nullptr);

    CException empty(nullptr, 0, nullptr, "");
    EXPECT_EQ(empty.GetMessage(), nullptr);
}

TEST(Exception, CopiesOwnTheirMessages) {
    auto* original = new CException("f", 1, "d", "message");
    CException copy(*original);
    EXPECT_NE(copy.GetMessage(), original->GetMessage());
    delete original; // the copy must survive its source
    EXPECT_STREQ(copy.GetMessage(), "message");

    CException target("g", 2, nullptr, "old");
    target = copy;
    EXPECT_STREQ(target.GetSourceFile(), "f");
    EXPECT_EQ(target.GetSourceLine(), 1u);
    EXPECT_STREQ(target.GetMessage(), "message");
    EXPECT_NE(target.GetMessage(), copy.GetMessage());
    CException& self = target;
    target = self;
    EXPECT_STREQ(target.GetMessage(), "message");

    lumo::io::CIOException io("h", 3, "Stream closed.", "x");
    lumo::io::CIOException ioCopy = io;
    EXPECT_EQ(ioCopy.GetClass(), &lumo::io::CIOException::m_classCIOException);
    EXPECT_STREQ(ioCopy.GetMessage(), "x");
}

TEST(Exception, RecordTableAndBases) {
    struct Row {
        char const* name;
        char const* base;
    };
    Row const rows[] = {
        {"lumo::base::CException", "lumo::base::CObject"},
        {"lumo::base::CArrayIndexOutOfBoundsException", "lumo::base::CException"},
        {"lumo::base::CClassCastException", "lumo::base::CException"},
        {"lumo::base::CMemoryException", "lumo::base::CException"},
        {"lumo::base::CNullReferenceException", "lumo::base::CException"},
        {"lumo::base::CIllegalArgumentException", "lumo::base::CException"},
        {"lumo::base::CIllegalComparisonException", "lumo::base::CException"},
        {"lumo::base::CIllegalStateException", "lumo::base::CException"},
        {"lumo::base::CNumberFormatException", "lumo::base::CException"},
        {"lumo::base::CSynchronizationException", "lumo::base::CException"},
        {"lumo::base::CTimeoutException", "lumo::base::CSynchronizationException"},
        {"lumo::base::CClassNotFoundException", "lumo::base::CException"},
        {"lumo::base::CInstantiationException", "lumo::base::CException"},
        {"lumo::base::win::CWinSystemErrorException", "lumo::base::CException"},
        {"lumo::io::CIOException", "lumo::base::CException"},
        {"lumo::io::CCharConversionException", "lumo::io::CIOException"},
        {"lumo::io::CUnknownCharacterException", "lumo::io::CCharConversionException"},
        {"lumo::io::CInterruptedIOException", "lumo::io::CIOException"},
        {"lumo::io::CUnsupportedEncodingException", "lumo::io::CIOException"},
        {"lumo::io::CXMLException", "lumo::io::CIOException"},
        {"lumo::util::CEmptyQueueException", "lumo::base::CException"},
        {"lumo::util::CEmptyStackException", "lumo::base::CException"},
        {"lumo::util::CNoSuchElementException", "lumo::base::CMemoryException"},
        {"lumo::net::CSocketException", "lumo::io::CIOException"},
        {"lumo::net::CUnknownHostException", "lumo::io::CIOException"},
    };
    CClass const* root = CClass::FindClass("lumo::base::CException");
    for (Row const& row : rows) {
        CClass const* cls = CClass::FindClass(row.name);
        ASSERT_NE(cls, nullptr) << row.name;
        EXPECT_STREQ(cls->GetQualifiedBaseClassName1(), row.base) << row.name;
        EXPECT_EQ(cls->GetBaseClass1(), CClass::FindClass(row.base)) << row.name;
        EXPECT_TRUE(cls->IsInstanceOf(root)) << row.name;
        EXPECT_EQ(cls->GetConstructor(), nullptr) << row.name;
    }
    lumo::io::CUnknownCharacterException unknown("f", -1, 0xD800);
    EXPECT_EQ(unknown.GetCharacter(), 0xD800);
    EXPECT_TRUE(unknown.IsInstanceOf(CClass::FindClass("lumo::io::CIOException")));
    EXPECT_EQ(unknown.GetErrorDescription(), nullptr);
    CTimeoutException timeout("f", 1, "Timed out.", nullptr);
    EXPECT_TRUE(timeout.IsInstanceOf(&CSynchronizationException::m_classCSynchronizationException));
}

TEST(Exception, TextCarryingExceptions) {
    lumo::io::CUnsupportedEncodingException encoding("f", 1, "EBCDIC");
    EXPECT_STREQ(encoding.GetEncoding(), "EBCDIC");
    lumo::io::CUnsupportedEncodingException none("f", 1, nullptr);
    EXPECT_TRUE(none.GetEncoding().IsEmpty());

    lumo::net::CUnknownHostException host("f", 1, "nowhere.invalid");
    EXPECT_STREQ(host.GetHostName(), "nowhere.invalid");
    EXPECT_STREQ(host.GetErrorDescription(), "Unknown host name.");
    EXPECT_EQ(host.GetMessage(), nullptr);
    lumo::net::CUnknownHostException noHost("f", 1, nullptr);
    EXPECT_STREQ(noHost.GetHostName(), "");

    CClassNotFoundException missing("f", 1, "d", "m", "a::B");
    CClassNotFoundException copy = missing;
    EXPECT_STREQ(copy.GetClassName(), "a::B");
    EXPECT_STREQ(copy.GetMessage(), "m");
}

TEST(Exception, SystemErrorText) {
    lumo::base::win::CWinSystemErrorException denied("f", 1, "Open failed.", EACCES);
    EXPECT_EQ(denied.GetErrorCode(), static_cast<unsigned long>(EACCES));
    ASSERT_NE(denied.GetMessage(), nullptr);
    EXPECT_STREQ(denied.GetMessage(), std::strerror(EACCES));

    lumo::base::win::CWinSystemErrorException zero("f", 1, "Open failed.", 0);
    EXPECT_EQ(zero.GetMessage(), nullptr);
}
