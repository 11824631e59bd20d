status_text <- function(status) .Call(C_status_text, as_codes(status, "status"))

exclusion_text <- function(exclusion) .Call(C_exclusion_text, as_codes(exclusion, "exclusion"))
