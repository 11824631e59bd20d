#pragma once

#include "host/draw/Picture.h"

namespace host {

/// The picture with what can be seen of a layer or a line of very many points. Every plot goes through it.
///
/// Of marks of one size that lie within half their radius of each other, one is drawn: the outermost, so that
/// the outline of the cloud is that of all marks. Discs are darker where they stand for three, ten and a
/// hundred, which the legend says. A line keeps its ends, its least and its most in each column of pixels.
/// The description says how many marks stand for all. Pictures of few marks stay as they are.
Picture WithVisibleMarks(Picture picture);

} // namespace host
