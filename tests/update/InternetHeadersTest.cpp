#include "update/InternetHeaders.h"

#include <gtest/gtest.h>

namespace {

// Each entry as "Name=Value", in enumeration order.
std::vector<std::string> entries(const InternetHeaders& headers) {
    std::vector<std::string> out;
    for (int i = 0; i < headers.Count(); ++i) {
        out.push_back((headers.Name(i) + '=' + headers.Value(i)).toStdString());
    }
    return out;
}

InternetHeaders threeReceived() {
    InternetHeaders headers;
    headers.AppendHeader("Received", "one");
    headers.AppendHeader("Received", "two");
    headers.AppendHeader("Received", "three");
    return headers;
}

using Entries = std::vector<std::string>;

TEST(InternetHeadersRepeats, AppendKeepsEveryValueUnderNumberedKeys) {
    const InternetHeaders headers = threeReceived();
    EXPECT_EQ(headers.NameCount("Received"), 3);
    EXPECT_EQ(headers.Count(), 3);
    EXPECT_EQ(entries(headers), (Entries{"Received=one", "Received=two", "Received=three"}));
    EXPECT_EQ(headers.Value("received", 2), "three");
    EXPECT_EQ(headers.Value("Received", -4), "one");
    EXPECT_EQ(headers.CommaSeparatedValues("RECEIVED"), "one, two, three");
}

TEST(InternetHeadersRepeats, DeleteOneShiftsTheLaterValuesDown) {
    InternetHeaders headers = threeReceived();
    headers.Delete("Received", 0);
    EXPECT_EQ(headers.Count(), 2);
    EXPECT_EQ(headers.Value("Received", 0), "two");
    EXPECT_EQ(headers.Value("Received", 1), "three");
    EXPECT_EQ(headers.Value("Received", 2), "");

    headers.Delete("Received", 5);
    EXPECT_EQ(headers.Count(), 2);
}

TEST(InternetHeadersRepeats, SetHeaderCollapsesRepeatsButReplacesASingleValueInPlace) {
    InternetHeaders repeated = threeReceived();
    repeated.SetHeader("Received", "x");
    EXPECT_EQ(entries(repeated), (Entries{"Received=x"}));

    InternetHeaders single;
    single.SetHeader("Host", "old");
    single.SetHeader("Accept", "*/*");
    single.SetHeader("host", "a");
    // The spelling and the place of the first insertion stay.
    EXPECT_EQ(entries(single), (Entries{"Host=a", "Accept=*/*"}));
}

TEST(InternetHeadersRepeats, IndexedSetBeyondTheEndLeavesAGapThatNameCountStopsAt) {
    InternetHeaders headers;
    headers.SetHeader("A", "first");
    headers.SetHeader("A", "fourth", 3);
    EXPECT_EQ(headers.NameCount("A"), 1);
    EXPECT_EQ(headers.Count(), 2);
    EXPECT_EQ(headers.Value(1), "fourth");
    EXPECT_EQ(headers.Name(1), "A");

    // A literal "A:1" is the second value of A.
    headers.SetHeader("A:1", "second");
    EXPECT_EQ(headers.NameCount("A"), 2);
    EXPECT_EQ(headers.Value("A", 1), "second");
}

TEST(InternetHeadersRepeats, DeleteByNameRemovesTheUnbrokenRunOnly) {
    InternetHeaders headers = threeReceived();
    headers.SetHeader("Other", "stays");
    headers.Delete("received");
    EXPECT_EQ(entries(headers), (Entries{"Other=stays"}));
    headers.Delete("absent");
    EXPECT_EQ(headers.Count(), 1);
}

TEST(InternetHeadersRange, OutOfRangeIndexesGiveEmptyText) {
    const InternetHeaders headers = threeReceived();
    EXPECT_EQ(headers.Value(3), "");
    EXPECT_EQ(headers.Value(-1), "");
    EXPECT_EQ(headers.Name(7), "");
    EXPECT_EQ(headers.Value("Missing"), "");
    EXPECT_EQ(headers.NameCount("Missing"), 0);
}

struct ParseCase {
    const char* label;
    QByteArray text;
    Entries expected;
};

class InternetHeadersParse : public testing::TestWithParam<ParseCase> {};

TEST_P(InternetHeadersParse, GivesTheEntries) {
    InternetHeaders headers;
    headers.SetHeader("Earlier", "goes");
    headers._ParseHeaders(GetParam().text);
    EXPECT_EQ(entries(headers), GetParam().expected);
    EXPECT_EQ(headers.Source(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, InternetHeadersParse,
    testing::Values(
        ParseCase{"StatusLineSkipped", "HTTP/1.0 200 OK\r\nA: 1\r\nB:2", {"A=1", "B=2"}},
        ParseCase{"LfOnlyLikeCrLf", "HTTP/1.0 200 OK\nA: 1\nB:2", {"A=1", "B=2"}},
        ParseCase{"CrOnly", "A: 1\rB: 2", {"A=1", "B=2"}},
        ParseCase{"FoldedWithBlank", "A: 1\r\n 2\r\nB: 3", {"A=1 2", "B=3"}},
        ParseCase{"FoldedWithTabKeepsFurtherBlanks", "A: 1\r\n\t  2", {"A=1   2"}},
        ParseCase{"MixedEndsReadAsCrLf", "A: 1\nB: 2\r\nC: 3", {"A=1\nB: 2", "C=3"}},
        ParseCase{"EmptyValueAndEmptyName", "A:\r\n:\r\n: x", {"A=", "=", "=x"}},
        ParseCase{"ValueKeepsLaterColonsAndTrailingBlanks", "Date: 12:30:01  ", {"Date=12:30:01  "}},
        ParseCase{"NameIsNotTrimmed", "A : 1", {"A =1"}},
        ParseCase{"RepeatsKeepEveryValue", "Set: a\r\nset: b\r\nSET: c", {"Set=a", "set=b", "SET=c"}},
        ParseCase{"Nothing", "", {}}),
    [](const auto& info) { return info.param.label; });

TEST(InternetHeadersParseRepeats, FirstValueByNameAndThousandsOfRepeats) {
    QByteArray block = "HTTP/1.0 200 OK";
    for (int i = 0; i < 20000; ++i) {
        block += "\r\nX: " + QByteArray::number(i);
    }
    InternetHeaders headers;
    headers._ParseHeaders(block);
    EXPECT_EQ(headers.Value("x"), "0");
    EXPECT_EQ(headers.Value("X", 19999), "19999");
    EXPECT_EQ(headers.NameCount("X"), 20000);
}

TEST(InternetHeadersFormat, HttpLinesFollowInsertionWithoutTrailingLineEnd) {
    InternetHeaders headers;
    EXPECT_EQ(headers.Source(), "");
    headers.SetHeader("Accept", "*/*");
    headers.AppendHeader("Via", "a");
    headers.AppendHeader("Via", "b");
    headers.SetHeader("Host", "h:81");
    EXPECT_EQ(headers._FormatHTTPHeaders(), "Accept: */*\r\nVia: a\r\nVia: b\r\nHost: h:81");
    EXPECT_EQ(headers.Source(), headers._FormatHTTPHeaders());
}

TEST(InternetHeadersFormat, SourceOfAParsedListStaysTheTextItCameFrom) {
    InternetHeaders headers;
    headers._ParseHeaders("A: 1\nB: 2");
    headers.SetHeader("A", "changed");
    EXPECT_EQ(headers.Source(), "A: 1\nB: 2");
    headers.DeleteAllHeaders();
    EXPECT_EQ(headers.Count(), 0);
    EXPECT_EQ(headers.Source(), "A: 1\nB: 2");
}

TEST(InternetHeadersFormat, MailHeadersComeInTheirFixedOrderWithoutBcc) {
    InternetHeaders headers;
    headers.SetHeader("X-Mailer", "k");
    headers.SetHeader("bcc", "hidden@example.org");
    headers.AppendHeader("To", "a@example.org");
    headers.AppendHeader("To", "b@example.org");
    headers.SetHeader("Subject", "s");
    headers.AppendHeader("Received", "r1");
    headers.AppendHeader("Received", "r2");
    headers.SetHeader("Return-Path", "<p@example.org>");
    headers.SetHeader("From", "f@example.org");
    EXPECT_EQ(headers._FormatEmailHeaders(), "Return-Path: <p@example.org>\r\n"
                                             "Received: r1\r\nReceived: r2\r\n"
                                             "Subject: s\r\nFrom: f@example.org\r\n"
                                             "To: a@example.org, b@example.org\r\n"
                                             "X-Mailer: k");
}

TEST(InternetHeadersEol, WholeTextDecides) {
    EXPECT_EQ(determineEol("a\nb\r\nc"), "\r\n");
    EXPECT_EQ(determineEol("a\nb\rc"), "\n");
    EXPECT_EQ(determineEol("a\rb"), "\r");
    EXPECT_EQ(determineEol("ab"), "\r\n");
}

} // namespace
