# A list of columns, vectors or matrices, as a data frame, without the copies and checks of data.frame().
data_frame <- function(columns)
{
    attr(columns, "row.names") <- .set_row_names(NROW(columns[[1L]]))
    class(columns) <- "data.frame"
    columns
}

# Each vector is looked at, for unlist() makes numbers of a factor.
flatten <- function(vectors, name)
{
    if (!all(vapply(vectors, is_numbers, NA)))
        stop("`", name, "` has an element that is not a numeric vector", call. = FALSE)
    as.double(unlist(vectors, use.names = FALSE))
}

# Whether values are numbers, or all missing: NA alone is logical.
is_numbers <- function(values) is.numeric(values) || (is.logical(values) && all(is.na(values)))

# Numbers as doubles, in a matrix as before; without a copy where they are doubles.
as_doubles <- function(values, name)
{
    if (!is_numbers(values))
        stop("`", name, "` is not numeric", call. = FALSE)
    if (!is.object(values) && typeof(values) == "double")
        return(values)
    doubles <- as.double(values)
    dim(doubles) <- dim(values)
    dimnames(doubles) <- dimnames(values)
    doubles
}

check_length <- function(values, name, effects)
{
    if (length(values) != length(effects))
        stop("`", name, "` has ", length(values), " elements, and `effects` ", length(effects), call. = FALSE)
}

check_same_names <- function(of_effects, of_variances, what)
{
    if (!is.null(of_effects) && !is.null(of_variances) && !identical(of_effects, of_variances))
        stop("The ", what, " of `effects` and `variances` have different names", call. = FALSE)
}

as_codes <- function(values, name)
{
    if (!is.numeric(values))
        stop("`", name, "` is not numeric", call. = FALSE)
    as.integer(values)
}

on_or_off <- function(value, name)
{
    if (!isTRUE(value) && !isFALSE(value))
        stop("`", name, "` is neither TRUE nor FALSE", call. = FALSE)
    if (value) "on" else "off"
}
