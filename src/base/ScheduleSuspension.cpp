#include "base/ScheduleSuspension.h"

#include <utility>

ScheduleSuspension::Token::Token(Token&& other) noexcept
    : m_owner(std::exchange(other.m_owner, nullptr)) {}

ScheduleSuspension::Token& ScheduleSuspension::Token::operator=(Token&& other) noexcept {
    if (this != &other) {
        let(false);
        m_owner = std::exchange(other.m_owner, nullptr);
    }
    return *this;
}

ScheduleSuspension::Token::~Token() {
    let(false);
}

void ScheduleSuspension::Token::release() {
    let(true);
}

void ScheduleSuspension::Token::let(bool released) {
    if (ScheduleSuspension* owner = std::exchange(m_owner, nullptr)) {
        owner->let(released);
    }
}

ScheduleSuspension::Token ScheduleSuspension::hold() {
    ++m_holders;
    emit changed();
    return Token(this);
}

void ScheduleSuspension::let(bool released) {
    --m_holders;
    m_stranded = !released;
    emit changed();
}
