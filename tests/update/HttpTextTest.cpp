#include "update/HTTPSocket.h"
#include "update/HeaderBlock.h"
#include "update/HttpUrl.h"

#include <gtest/gtest.h>

namespace {

struct UrlCase {
    const char* label;
    QByteArray url;
    QByteArray server, path, address;
    int port;
};

class HttpUrlParse : public testing::TestWithParam<UrlCase> {};

TEST_P(HttpUrlParse, SplitsServerPathAndPort) {
    const UrlCase& c = GetParam();
    const HttpUrl url = parseHttpUrl(c.url, 80);
    EXPECT_EQ(url.server, c.server);
    EXPECT_EQ(url.path, c.path);
    EXPECT_EQ(url.address, c.address);
    EXPECT_EQ(url.port, c.port);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, HttpUrlParse,
    testing::Values(UrlCase{"NoPath", "http://host", "host", "/", "host", 80},
                    UrlCase{"NoScheme", "host/path", "host", "/path", "host", 80},
                    UrlCase{"HttpsStaysInTheClearOnDefaultPort", "https://host/", "host", "/", "host", 80},
                    UrlCase{"Port", "http://host:8080/x", "host:8080", "/x", "host", 8080},
                    UrlCase{"QueryStaysUnescaped", "http://h/a b?q=%zz&r=1", "h", "/a b?q=%zz&r=1", "h", 80},
                    UrlCase{"PortThatIsNoNumber", "http://h:abc/", "h:abc", "/", "h", 80},
                    UrlCase{"HugePortSaturates", "h:99999999999/", "h:99999999999", "/", "h", 2147483647},
                    UrlCase{"Empty", "", "", "/", "", 80}),
    [](const auto& info) { return info.param.label; });

struct BlockCase {
    const char* label;
    QByteArray buffer;
    qsizetype length; // -1: incomplete
    qsizetype eolLength;
};

class HeaderBlockFind : public testing::TestWithParam<BlockCase> {};

TEST_P(HeaderBlockFind, FindsTheBlankLine) {
    const BlockCase& c = GetParam();
    const auto end = findHeaderBlockEnd(c.buffer);
    if (c.length < 0) {
        EXPECT_FALSE(end.has_value());
        return;
    }
    ASSERT_TRUE(end.has_value());
    EXPECT_EQ(end->length, c.length);
    EXPECT_EQ(end->eolLength, c.eolLength);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, HeaderBlockFind,
    testing::Values(BlockCase{"CrLf", "HTTP/1.0 200 OK\r\nA: 1\r\n\r\nbody\r\n\r\n", 21, 2},
                    BlockCase{"LfOnly", "HTTP/1.0 200 OK\nA: 1\n\nbody", 20, 1},
                    BlockCase{"CrOnly", "HTTP/1.0 200 OK\rA: 1\r\rbody", 20, 1},
                    // CR LF in the text makes it the line end, yet an earlier LF LF still ends it.
                    BlockCase{"LfPairInCrLfText", "HTTP/1.0 200 OK\nA: 1\n\nbody\r\nmore", 20, 1},
                    BlockCase{"Incomplete", "HTTP/1.0 200 OK\r\nA: 1\r\n", -1, 0},
                    BlockCase{"EmptyBlock", "\r\n\r\n", 0, 2}, BlockCase{"Nothing", "", -1, 0}),
    [](const auto& info) { return info.param.label; });

TEST(HeaderBlockStatus, SecondFieldOfTheFirstLine) {
    EXPECT_EQ(statusCodeOf("HTTP/1.1 404 Not Found\r\nA: 1"), 404);
    EXPECT_EQ(statusCodeOf("HTTP/1.0 200"), 200);
    EXPECT_EQ(statusCodeOf("HTTP/1.0"), 0);
    EXPECT_EQ(statusCodeOf("HTTP/1.0 abc"), 0);
    EXPECT_EQ(statusCodeOf("HTTP/1.0 2xx OK"), 2);
    EXPECT_EQ(statusCodeOf("HTTP/1.0  200 OK"), 0);
    EXPECT_EQ(statusCodeOf("HTTP/1.0 401\nWWW-Authenticate: x"), 401);
}

TEST(HeaderBlockNumber, ReadsTheLeadingNumberAndSaturates) {
    EXPECT_EQ(leadingInt32("  1234abc"), 1234);
    EXPECT_EQ(leadingInt32("-17"), -17);
    EXPECT_EQ(leadingInt32("12.9"), 12);
    EXPECT_EQ(leadingInt32("x1"), 0);
    EXPECT_EQ(leadingInt32(""), 0);
    EXPECT_EQ(leadingInt32("99999999999999999999999"), 2147483647);
    EXPECT_EQ(leadingInt32("-99999999999999999999999"), -2147483647 - 1);
}

TEST(UrlEncoding, EscapesItsListOnlyAndBlanksLast) {
    EXPECT_EQ(encodeUrlString("a-b_c~d e%f"), "a%2Db%5Fc%7Ed+e%25f");
    EXPECT_EQ(encodeUrlString("/\\[]{}`()*^$#!+;<>,=&\r\n"),
              "%2F%5C%5B%5D%7B%7D%60%28%29%2A%5E%24%23%21%2B%3B%3C%3E%2C%3D%26%0D%0A");
    EXPECT_EQ(encodeUrlString("keep.these:?\"'\xC3\xA9"), "keep.these:?\"'\xC3\xA9");
}

TEST(UrlEncoding, FormDataJoinsPairsInOrder) {
    EXPECT_EQ(HTTPSocket::EncodeFormData({{"name", "A B"}, {"x&y", "1=2"}}), "name=A+B&x%26y=1%3D2");
    EXPECT_EQ(HTTPSocket::EncodeFormData({}), "");
}

} // namespace
