#include "host/draw/PictureFit.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

void Shift(Picture& picture, double right, double down)
{
    picture.frame.left += right;
    picture.frame.top += down;
    for (PictureText& text : picture.texts) {
        text.x += right;
        text.y += down;
    }
    for (Rule& rule : picture.rules)
        rule = {rule.left + right, rule.right + right, rule.y + down};
    for (Picture& panel : picture.panels)
        Shift(panel, right, down);
}

void Enlarge(Picture& picture, double width, double height)
{
    Shift(picture, (width - picture.width) / 2, (height - picture.height) / 2);
    picture.width = width;
    picture.height = height;
}

/// The picture as the format has it: in pages where it has these, else as a whole.
Picture InFormat(Picture picture, PictureFormat format)
{
    if (format != PictureFormat::PDF)
        picture.pages.clear();
    if (!picture.pages.empty())
        picture.height = picture.pages.front().height;
    return picture;
}

} // namespace

FittedPicture FittedTo(const DrawingMedium& medium, Picture whole)
{
    Picture picture = InFormat(std::move(whole), medium.format);
    const std::optional<PictureSize>& size = medium.size;
    if (!size)
        return {std::move(picture), 1};
    const double byWidth = size->width / picture.width;
    const double scale = size->height ? std::min(byWidth, *size->height / picture.height) : byWidth;
    const double height = size->height ? *size->height / scale : picture.height;
    Enlarge(picture, size->width / scale, height);
    for (Picture& page : picture.pages)
        Enlarge(page, size->width / scale, std::max(height, page.height));
    return {std::move(picture), scale};
}

} // namespace host
