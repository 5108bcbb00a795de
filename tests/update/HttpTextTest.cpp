#include "update/HeaderBlock.h"
#include "update/HttpAuthentication.h"
#include "update/HttpUrl.h"
#include "update/InternetHeaders.h"

#include <gtest/gtest.h>

namespace {

// Checks what `read` makes of each input of a flat table: input, expected, input, expected, ...
template <typename Read> void expectPairs(const QByteArrayList& table, Read read) {
    for (qsizetype i = 0; i + 1 < table.size(); i += 2) {
        EXPECT_EQ(read(table[i]), table[i + 1]) << table[i].data();
    }
}

QByteArray number(qint64 n) {
    return QByteArray::number(n);
}

// Each entry as "Name=Value|", in enumeration order.
QByteArray entries(const InternetHeaders& headers) {
    QByteArray out;
    for (int i = 0; i < headers.Count(); ++i) {
        out += headers.Name(i) + '=' + headers.Value(i) + '|';
    }
    return out;
}

TEST(HttpText, UrlsHeaderBlocksStatusesAndNumbers) {
    expectPairs({"http://host", "host|/|host|81", "https://host/", "host|/|host|443|tls", "HTTPS://h:8443",
                 "h:8443|/|h|8443|tls", "httpsx://h/", "h|/|h|81", "host:8080/x", "host:8080|/x|host|8080",
                 "http://h/a b?q=%zz", "h|/a b?q=%zz|h|81", "http://h:abc/", "h:abc|/|h|81", "h:99999999999/",
                 "h:99999999999|/|h|2147483647", "", "|/||81"},
                [](const QByteArray& text) {
                    const HttpUrl url = parseHttpUrl(text, 81);
                    return url.server + '|' + url.path + '|' + url.address + '|' + number(url.port) +
                           (url.tls ? "|tls" : "");
                });
    // CR LF anywhere makes it the line end, yet an earlier LF LF still ends the block.
    expectPairs({"HTTP/1.0 200 OK\r\nA: 1\r\n\r\nbody\r\n\r\n", "21/2", "HTTP/1.0 200 OK\nA: 1\n\nbody",
                 "20/1", "HTTP/1.0 200 OK\rA: 1\r\rbody", "20/1", "HTTP/1.0 200 OK\nA: 1\n\nbody\r\nmore",
                 "20/1", "HTTP/1.0 200 OK\r\nA: 1\r\n", "none", "\r\n\r\n", "0/2", "", "none"},
                [](const QByteArray& buffer) {
                    const auto end = findHeaderBlockEnd(buffer);
                    return end ? number(end->length) + '/' + number(end->eolLength) : "none";
                });
    expectPairs({"HTTP/1.1 404 Not Found\r\nA: 1", "404", "HTTP/1.0 200", "200", "HTTP/1.0", "0",
                 "HTTP/1.0 2xx OK", "2", "HTTP/1.0  200 OK", "0", "HTTP/1.0 401\nWWW-Authenticate: x", "401"},
                [](const QByteArray& block) { return number(statusCodeOf(block)); });
    expectPairs({" \t1234abc", "1234", "-17", "-17", "+12.9", "12", "x1", "0", "", "0",
                 "99999999999999999999999", "2147483647", "-99999999999999999999999", "-2147483648"},
                [](const QByteArray& text) { return number(leadingInt32(text)); });
    expectPairs({" 4294967296 ", "4294967296", "12abc", "none", "", "none"}, [](const QByteArray& text) {
        const auto length = contentLengthOf(text);
        return length ? number(*length) : "none";
    });
    EXPECT_EQ(encodeUrlString("a-b_c~d e%f+g/&=\r\nkeep.these:?\"'\xC3\xA9"),
              "a%2Db%5Fc%7Ed+e%25f%2Bg%2F%26%3D%0D%0Akeep.these:?\"'\xC3\xA9");
}

TEST(HttpText, HeaderRepeatsLiveUnderNumberedKeysAndSetHeaderStartsThemAfresh) {
    InternetHeaders headers;
    headers.SetHeader("Host", "old");
    for (const char* value : {"one", "two", "three"}) {
        headers.AppendHeader("Via", value);
    }
    EXPECT_EQ(headers.NameCount("VIA"), 3);
    EXPECT_EQ(headers.Value("via", 2) + headers.Value("Via", -4) + headers.CommaSeparatedValues("Via"),
              "threeoneone, two, three");
    EXPECT_EQ(headers.Value(-1) + headers.Value(4) + headers.Name(-1) + headers.Name(4), "");
    headers.Delete("Via", 5);
    headers.Delete("Via", 0);
    EXPECT_EQ(headers.CommaSeparatedValues("Via") + ' ' + number(headers.Count()), "two, three 3");

    // The spelling and the place of the first insertion stay; a repeated name starts afresh.
    headers.SetHeader("Accept", "*/*");
    headers.SetHeader("host", "a");
    headers.SetHeader("Accept", "text/*", 0);
    headers.SetHeader("via", "x");
    // A value set beyond the end leaves a gap that counting and deleting stop at.
    headers.SetHeader("A", "first");
    headers.SetHeader("A", "fourth", 3);
    headers.SetHeader("A:1", "second");
    EXPECT_EQ(headers.NameCount("A"), 2);
    headers.Delete("A");
    headers.Delete("absent");
    EXPECT_EQ(entries(headers), "Host=a|Accept=text/*|via=x|A=fourth|");
}

TEST(HttpText, HeaderBlocksParseWhateverTheLineEnds) {
    expectPairs({"HTTP/1.0 200 OK\r\nA: 1\r\nB:2",
                 "A=1|B=2|",
                 "HTTP/1.0 200 OK\nA: 1\nB:2",
                 "A=1|B=2|",
                 "A: 1\rB: 2",
                 "A=1|B=2|",
                 "A: 1\nB: 2\rC: 3",
                 "A=1|B=2\rC: 3|",
                 "A: 1\nB: 2\r\nC: 3",
                 "A=1\nB: 2|C=3|",
                 "A: 1\r\n 2\r\n\t  3\r\nB: 4",
                 "A=1 2   3|B=4|",
                 "A:\r\n:\r\n: x",
                 "A=|=|=x|",
                 "Date: 12:30:01  \r\nA : 1",
                 "Date=12:30:01  |A =1|",
                 "Set: a\r\nset: b\r\nSET: c",
                 "Set=a|set=b|SET=c|",
                 "",
                 ""},
                [](const QByteArray& text) {
                    InternetHeaders headers;
                    headers.SetHeader("Earlier", "goes");
                    headers._ParseHeaders(text);
                    const QByteArray parsed = entries(headers);
                    headers.DeleteAllHeaders();
                    return headers.Source() == text ? parsed : "source lost";
                });
}

TEST(HttpText, ChallengesSplitAtLineBreaksAndLoseTheirQuotesByPosition) {
    const Challenge basic = parseChallenge(R"(Basic realm="Files")");
    EXPECT_EQ(basic.scheme + ' ' + basic.params.at("REALM"), "Basic Files");
    EXPECT_EQ(parseChallenge("Basic").scheme, "");
    expectPairs({"realm=files", "realm=ile|", R"(realm="x", nonce="y")", R"(realm=x", nonce="y|)",
                 "realm=\"a\"\r\nnonce=\"b\"", "nonce=b|realm=a|", "noequals", "=equal|", "k=", "k=|", "",
                 "=|"},
                [](const QByteArray& text) {
                    QByteArray joined;
                    for (const auto& [key, value] : parseAuthenticationParams(text)) {
                        joined += key + '=' + value + '|';
                    }
                    return joined;
                });
    NonceCounts nonces;
    const auto answer = [&](const QByteArray& scheme, const QByteArray& name) {
        return createAuthenticationData(scheme, name, "b", {}, nonces);
    };
    const QByteArray encoded = (QByteArray(60, 'n') + ":b").toBase64();
    EXPECT_EQ(answer("Basic", QByteArray(60, 'n')), "Basic " + encoded.left(76) + "\r\n" + encoded.mid(76));
    EXPECT_EQ(answer("bAsIc", "a"), "Basic YTpi");
    EXPECT_TRUE(answer("dIGEST", "a").startsWith("Digest username=\"a\", "));
    EXPECT_EQ(answer("", "a") + answer("NTLM", "a"), "");
}

TEST(HttpText, DigestAnswerMatchesAnIndependentComputation) {
    setNonceRandom([calls = 0](int low, int high) mutable { return low + (calls++ * 7) % (high - low + 1); });
    NonceCounts nonces;
    const auto answer = [&](const AuthenticationParams& params) {
        return createAuthenticationData("Digest", "Mufasa", "Circle Of Life", params, nonces);
    };
    const AuthenticationParams params{{"realm", "testrealm@host.com"},
                                      {"nonce", "dcd98b7102dd2f0e8b11d0f600bfb0c093"},
                                      {"method", "GET"},
                                      {"uri", "http://127.0.0.1/dir/index.html"},
                                      {"opaque", "5ccc069c403ebaf9f0171e9517f40e41"}};
    // MD5 by another implementation of Mufasa::Circle Of Life (no realm), the nonce, nc 00000001,
    // the client nonce and GET:uri.
    EXPECT_EQ(answer(params),
              R"(Digest username="Mufasa", realm="testrealm@host.com", )"
              R"(nonce="dcd98b7102dd2f0e8b11d0f600bfb0c093", uri="http://127.0.0.1/dir/index.html", )"
              R"(qop=auth, nc=00000001, cnonce="07ELSZgnu18FMTahov29GNUbi", )"
              R"(response="71fdc381f7e0c4b76faca8fbd0246f11", opaque="")");
    setNonceRandom({});
    // The count never rises; without opaque the answer ends in a comma and a blank.
    EXPECT_TRUE(answer(params).contains(", nc=00000001, "));
    const QByteArray bare = answer({{"nonce", "n1"}});
    EXPECT_TRUE(bare.contains(R"(realm="", nonce="n1", uri="/", )") && bare.endsWith("\", ")) << bare.data();
}

} // namespace
