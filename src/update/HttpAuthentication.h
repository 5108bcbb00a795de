#pragma once

#include <QByteArray>

#include <functional>
#include <map>

// Answers to the challenges of 401 and 407 responses, for the schemes Basic and Digest.

struct CaseInsensitiveLess {
    bool operator()(const QByteArray& a, const QByteArray& b) const;
};
using AuthenticationParams = std::map<QByteArray, QByteArray, CaseInsensitiveLess>;
// How often each server nonce has been answered.
using NonceCounts = std::map<QByteArray, int>;

struct Challenge {
    QByteArray scheme; // the text in front of the first blank; empty when there is no blank
    AuthenticationParams params;
};

// A WWW-Authenticate or Proxy-Authenticate value.
Challenge parseChallenge(const QByteArray& header);

// Pieces are split at CR LF only, never at commas: a challenge with several parameters on one
// line reads as one parameter. Each piece is key="value", and the quotes come off by position,
// so a value without quotes loses its first and last characters.
AuthenticationParams parseAuthenticationParams(const QByteArray& text);

// The Authorization value; empty for a scheme that is neither "Digest" nor "Basic", in any letter
// case.
QByteArray createAuthenticationData(const QByteArray& scheme, const QByteArray& name,
                                    const QByteArray& password, const AuthenticationParams& params,
                                    NonceCounts& nonces);

// 25 letters and digits.
QByteArray createClientNonce();

// Where the client nonce draws its numbers, low and high both included. Tests make the nonce
// predictable with this; the program keeps the system's random source.
using NonceRandom = std::function<int(int low, int high)>;
void setNonceRandom(NonceRandom random);
