status_text <- function(status)
{
    if (!is.numeric(status))
        stop("`status` is not numeric", call. = FALSE)
    .Call(C_status_text, as.integer(status))
}
