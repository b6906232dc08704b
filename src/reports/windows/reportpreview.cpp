#include "reportpreview.h"

#include "viewedreport.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <array>

namespace {

constexpr int deskMargin = 12; // pixels of desk around the page
constexpr std::array<double, 9> zoomSteps{0.25, 0.5, 0.75, 1.0, 1.25, 1.5, 2.0, 3.0, 4.0};

} // namespace

class ReportPreview::Canvas : public QWidget {
public:
    explicit Canvas(ReportPreview &preview) : preview_(preview) {}

protected:
    void paintEvent(QPaintEvent *) override
    {
        const ViewedReport *report = preview_.report_;
        if (!report || preview_.pageCount() == 0)
            return;
        QPainter painter(this);
        const QRect paper(QPoint(deskMargin, deskMargin), preview_.pageSize());
        painter.fillRect(paper.translated(3, 3), QColor(0, 0, 0, 60));
        painter.fillRect(paper, Qt::white);
        painter.setClipRect(paper);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setRenderHint(QPainter::TextAntialiasing);
        // Ink on paper, whatever colours the desk around it has.
        painter.setPen(Qt::black);
        const double scale = preview_.zoom_ * preview_.pixelsPerPoint();
        const QPageLayout layout = report->pageLayout();
        const QPointF origin = layout.paintRect(QPageLayout::Point).topLeft();
        painter.translate(paper.topLeft());
        painter.scale(scale, scale);
        painter.translate(origin);
        report->paintPage(preview_.page_, painter);
    }

private:
    ReportPreview &preview_;
};

ReportPreview::ReportPreview(QWidget *parent) : QScrollArea(parent), canvas_(new Canvas(*this))
{
    setObjectName(QStringLiteral("CRViewer1"));
    setBackgroundRole(QPalette::Dark);
    setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    // A bar that comes and goes would change the width a fit is computed for.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setWidget(canvas_);
    setFocusPolicy(Qt::StrongFocus);
}

ReportPreview::~ReportPreview() = default;

void ReportPreview::setReport(const ViewedReport *report)
{
    report_ = report;
    page_ = 0;
    refit();
    applyZoom(zoom_);
    emit pageChanged(page_, pageCount());
}

int ReportPreview::pageCount() const
{
    return report_ ? report_->pageCount() : 0;
}

void ReportPreview::setPage(int index)
{
    const int page = std::clamp(index, 0, std::max(0, pageCount() - 1));
    if (page == page_)
        return;
    page_ = page;
    verticalScrollBar()->setValue(0);
    canvas_->update();
    emit pageChanged(page_, pageCount());
}

QSizeF ReportPreview::pagePoints() const
{
    return report_ ? report_->pageLayout().fullRect(QPageLayout::Point).size() : QSizeF();
}

double ReportPreview::pixelsPerPoint() const
{
    return logicalDpiX() / 72.0;
}

QSize ReportPreview::pageSize() const
{
    return (pagePoints() * zoom_ * pixelsPerPoint()).toSize();
}

void ReportPreview::setZoom(double zoom)
{
    fit_ = Fit::None;
    applyZoom(zoom);
}

void ReportPreview::zoomIn()
{
    const auto next = std::upper_bound(zoomSteps.begin(), zoomSteps.end(), zoom_ + 1e-6);
    setZoom(next == zoomSteps.end() ? maxZoom : *next);
}

void ReportPreview::zoomOut()
{
    const auto below = std::lower_bound(zoomSteps.begin(), zoomSteps.end(), zoom_ - 1e-6);
    setZoom(below == zoomSteps.begin() ? minZoom : *(below - 1));
}

void ReportPreview::setFit(Fit fit)
{
    fit_ = fit;
    refit();
}

void ReportPreview::applyZoom(double zoom)
{
    zoom_ = std::clamp(zoom, minZoom, maxZoom);
    canvas_->resize(pageSize() + QSize(2 * deskMargin, 2 * deskMargin));
    canvas_->update();
    emit zoomChanged(zoom_);
}

void ReportPreview::refit()
{
    const QSizeF points = pagePoints() * pixelsPerPoint();
    if (fit_ == Fit::None || points.isEmpty())
        return;
    const QSizeF room = viewport()->size() - QSize(2 * deskMargin, 2 * deskMargin);
    const double byWidth = room.width() / points.width();
    applyZoom(fit_ == Fit::Width ? byWidth : std::min(byWidth, room.height() / points.height()));
}

void ReportPreview::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    refit();
}

void ReportPreview::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_PageDown:
        setPage(page_ + 1);
        break;
    case Qt::Key_PageUp:
        setPage(page_ - 1);
        break;
    default:
        QScrollArea::keyPressEvent(event);
    }
}
