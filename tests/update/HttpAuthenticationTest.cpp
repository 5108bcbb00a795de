#include "update/HttpAuthentication.h"

#include <gtest/gtest.h>

namespace {

// Makes the client nonce a known text for the life of the test.
class FixedNonce {
public:
    FixedNonce() {
        setNonceRandom([this](int, int) { return (m_calls++ * 7) % 62; });
    }
    ~FixedNonce() { setNonceRandom({}); }

private:
    int m_calls = 0;
};

QByteArray param(const AuthenticationParams& params, const QByteArray& key) {
    const auto it = params.find(key);
    return it == params.end() ? "<absent>" : it->second;
}

TEST(AuthenticationParse, QuotesComeOffByPosition) {
    const Challenge basic = parseChallenge(R"(Basic realm="Files")");
    EXPECT_EQ(basic.scheme, "Basic");
    EXPECT_EQ(param(basic.params, "REALM"), "Files");

    EXPECT_EQ(param(parseAuthenticationParams("realm=files"), "realm"), "ile");
    // Several parameters on one line read as one.
    const AuthenticationParams several = parseAuthenticationParams(R"(realm="x", nonce="y")");
    EXPECT_EQ(param(several, "realm"), R"(x", nonce="y)");
    EXPECT_EQ(param(several, "nonce"), "<absent>");
    EXPECT_EQ(param(parseAuthenticationParams("realm=\"a\"\r\nnonce=\"b\""), "nonce"), "b");
}

TEST(AuthenticationParse, MalformedChallengesGiveEmptySchemeOrKey) {
    EXPECT_EQ(parseChallenge("Basic").scheme, "");
    EXPECT_EQ(parseChallenge("").scheme, "");
    EXPECT_EQ(param(parseAuthenticationParams("noequals"), ""), "equal");
    EXPECT_EQ(param(parseAuthenticationParams("k="), "k"), "");
    EXPECT_EQ(param(parseAuthenticationParams(""), ""), "");
}

TEST(AuthenticationBasic, Base64OfNameAndPasswordWrappedAt76) {
    NonceCounts nonces;
    EXPECT_EQ(createAuthenticationData("Basic", "a", "b", {}, nonces), "Basic YTpi");

    const QByteArray name(40, 'n'), password(20, 'p');
    const QByteArray value = createAuthenticationData("Basic", name, password, {}, nonces);
    const QByteArray encoded = (name + ':' + password).toBase64();
    EXPECT_EQ(value, "Basic " + encoded.left(76) + "\r\n" + encoded.mid(76));
}

TEST(AuthenticationScheme, UnknownSchemeGivesNothing) {
    NonceCounts nonces;
    EXPECT_EQ(createAuthenticationData("", "a", "b", {}, nonces), "");
    EXPECT_EQ(createAuthenticationData("basic", "a", "b", {}, nonces), "");
    EXPECT_EQ(createAuthenticationData("NTLM", "a", "b", {}, nonces), "");
}

TEST(AuthenticationDigest, AnswerMatchesAnIndependentComputation) {
    const FixedNonce fixed;
    NonceCounts nonces;
    const AuthenticationParams params{{"realm", "testrealm@host.com"},
                                      {"nonce", "dcd98b7102dd2f0e8b11d0f600bfb0c093"},
                                      {"method", "GET"},
                                      {"uri", "http://127.0.0.1/dir/index.html"},
                                      {"opaque", "5ccc069c403ebaf9f0171e9517f40e41"}};
    // Computed with another MD5 implementation from username::password (empty realm), the
    // nonce, nc 00000001, the client nonce and GET:uri.
    EXPECT_EQ(createAuthenticationData("Digest", "Mufasa", "Circle Of Life", params, nonces),
              R"(Digest username="Mufasa", realm="testrealm@host.com", )"
              R"(nonce="dcd98b7102dd2f0e8b11d0f600bfb0c093", uri="http://127.0.0.1/dir/index.html", )"
              R"(qop=auth, nc=00000001, cnonce="07ELSZgnu18FMTahov29GNUbi", )"
              R"(response="71fdc381f7e0c4b76faca8fbd0246f11", opaque="")");
}

TEST(AuthenticationDigest, CountStaysOneAndNoOpaqueEndsInCommaBlank) {
    NonceCounts nonces;
    const AuthenticationParams params{{"nonce", "n1"}};
    QByteArray value;
    for (int i = 0; i < 3; ++i) {
        value = createAuthenticationData("Digest", "u", "p", params, nonces);
    }
    EXPECT_NE(value.indexOf(", nc=00000001, "), -1) << value.constData();
    EXPECT_TRUE(value.endsWith("\", ")) << value.constData();
    EXPECT_NE(value.indexOf(R"(realm="", nonce="n1", uri="/", )"), -1) << value.constData();
    EXPECT_EQ(nonces.size(), 1u);
    EXPECT_EQ(nonces.at("n1"), 0);

    createAuthenticationData("Digest", "u", "p", {}, nonces);
    EXPECT_TRUE(nonces.contains(""));
}

TEST(AuthenticationNonce, TwentyFiveLettersAndDigitsFromTheWholeRange) {
    int calls = 0;
    setNonceRandom([&calls](int low, int high) {
        EXPECT_EQ(low, 0);
        EXPECT_EQ(high, 61);
        const int values[] = {0, 9, 10, 35, 36, 61};
        return values[calls++ % 6];
    });
    const QByteArray nonce = createClientNonce();
    setNonceRandom({});
    EXPECT_EQ(nonce, "09AZaz09AZaz09AZaz09AZaz0");

    const QByteArray random = createClientNonce();
    ASSERT_EQ(random.size(), 25);
    for (const char c : random) {
        EXPECT_TRUE(std::isalnum(static_cast<unsigned char>(c))) << c;
    }
}

} // namespace
