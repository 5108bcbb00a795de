#pragma once

#include <QObject>
#include <QPointer>

// The busy flag of the capture schedule, held by the windows that suspend it. A window holds a
// Token from its opening; releasing the token ends its hold. A token that goes unreleased, as
// with a settings window closed by its close box, leaves the schedule suspended with nobody
// holding it, until the next release by any window. GUI thread only.
class ScheduleSuspension final : public QObject {
    Q_OBJECT

public:
    class Token {
    public:
        Token() = default;
        Token(Token&& other) noexcept;
        Token& operator=(Token&& other) noexcept;
        ~Token();

        // Ends this hold, and a stranded suspension with it.
        void release();

    private:
        friend class ScheduleSuspension;
        explicit Token(ScheduleSuspension* owner)
            : m_owner(owner) {}
        void let(bool released);

        QPointer<ScheduleSuspension> m_owner;
    };

    [[nodiscard]] Token hold();

    // The schedule waits while this is true.
    bool pSpecialWindowOpen() const { return m_holders > 0 || m_stranded; }
    // Suspended with no window open that could end it.
    bool stranded() const { return m_holders == 0 && m_stranded; }

signals:
    void changed();

private:
    void let(bool released);

    int m_holders = 0;
    bool m_stranded = false;
};
