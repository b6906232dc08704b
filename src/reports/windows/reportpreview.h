#pragma once

#include <QScrollArea>

class ViewedReport;

// One page of a report at a time, drawn as paper on a grey desk, with page
// navigation and zoom. A zoom of 1 shows the page at its real size on the
// screen; the fit modes follow the window as it is resized.
class ReportPreview : public QScrollArea {
    Q_OBJECT
public:
    enum class Fit { None, Width, Page };

    explicit ReportPreview(QWidget *parent = nullptr);
    ~ReportPreview() override;

    // Not owned; null shows nothing. Starts on the first page, keeping the zoom.
    void setReport(const ViewedReport *report);
    int page() const { return page_; } // from 0
    int pageCount() const;
    // Clamped to the pages there are.
    void setPage(int index);

    double zoom() const { return zoom_; }
    void setZoom(double zoom); // ends fitting
    void zoomIn();
    void zoomOut();
    Fit fit() const { return fit_; }
    void setFit(Fit fit);
    static constexpr double minZoom = 0.25;
    static constexpr double maxZoom = 4.0;

    // The page's size on the screen, in pixels.
    QSize pageSize() const;

signals:
    void pageChanged(int index, int count);
    void zoomChanged(double zoom);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    class Canvas;
    void applyZoom(double zoom);
    void refit();
    QSizeF pagePoints() const;
    double pixelsPerPoint() const;

    const ViewedReport *report_ = nullptr;
    Canvas *canvas_;
    int page_ = 0;
    double zoom_ = 1.0;
    Fit fit_ = Fit::Width;
};
