#pragma once

#include <QPixmap>
#include <QVariantAnimation>
#include <QWidget>

#include "platform/Windows.h"

namespace nevo {

/// Pictures of a page as it was and as it is, one giving way to the other over the page itself,
/// which takes clicks and keys meanwhile.
class PageTransition : public QWidget {
public:
    /// Begins one over `page`, which shows its new content already; it removes itself at its end,
    /// or when another one begins.
    static void run(QWidget& page, const QPixmap& before, Transition transition);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    PageTransition(QWidget& page, QPixmap from, bool isMove);

    QPixmap before;
    QPixmap after;
    bool moves;
    QVariantAnimation progress;
};

}  // namespace nevo
