# The sets as the library takes them: a matrix as it is (offsets NULL), all else one set behind the other.
arrange_sets <- function(effects, variances, groups)
{
    if (length(dim(effects)) > 2L)
        stop("`effects` is an array of ", length(dim(effects)), " dimensions, not a matrix of studies x sets",
             call. = FALSE)
    if (is.matrix(effects) || is.matrix(variances)) {
        if (!is.null(groups))
            stop("`groups` goes with vectors: in a matrix each column is a set", call. = FALSE)
        return(sets_of_matrices(effects, variances))
    }
    if (is.list(effects) || is.list(variances)) {
        if (!is.null(groups))
            stop("`groups` goes with vectors: in a list each element is a set", call. = FALSE)
        return(sets_of_lists(effects, variances))
    }
    sets_of_vectors(effects, variances, groups)
}

sets_of_matrices <- function(effects, variances)
{
    if (!identical(dim(effects), dim(variances)))
        stop("`effects` and `variances` are not matrices of as many rows and columns", call. = FALSE)
    check_same_names(rownames(effects), rownames(variances), "rows")
    check_same_names(colnames(effects), colnames(variances), "columns")
    list(effects = as_doubles(effects, "effects"), variances = as_doubles(variances, "variances"),
         labels = labels_of(colnames(effects)))
}

sets_of_lists <- function(effects, variances)
{
    counts <- lengths(effects, use.names = FALSE)
    if (!is.list(effects) || !is.list(variances) || !identical(counts, lengths(variances, use.names = FALSE)))
        stop("`effects` and `variances` are not lists of vectors of the same lengths", call. = FALSE)
    check_same_names(names(effects), names(variances), "elements")
    list(effects = flatten(effects, "effects"), variances = flatten(variances, "variances"),
         offsets = offsets_of(counts), labels = labels_of(names(effects)))
}

sets_of_vectors <- function(effects, variances, groups)
{
    effects <- as_doubles(effects, "effects")
    variances <- as_doubles(variances, "variances")
    check_length(variances, "variances", effects)
    if (is.null(groups))
        return(list(effects = effects, variances = variances, offsets = offsets_of(length(effects))))
    grouping <- grouping_of(groups, effects)
    if (!is.null(grouping$order)) {
        effects <- effects[grouping$order]
        variances <- variances[grouping$order]
    }
    c(list(effects = effects, variances = variances), grouping)
}

# Groups in order of first appearance, and the order of the studies in which those of a group are together,
# unless they are so already.
grouping_of <- function(groups, effects)
{
    if (!is.atomic(groups))
        stop("`groups` is neither a vector nor a factor", call. = FALSE)
    check_length(groups, "groups", effects)
    if (length(groups) >= .Machine$integer.max)
        stop("`groups` has ", .Machine$integer.max, " elements or more", call. = FALSE)
    keys <- if (is.factor(groups)) as.integer(groups) else groups
    if (anyNA(keys))
        stop("`groups` has missing values", call. = FALSE)
    count <- length(keys)
    starts <- which(c(count > 0L, keys[-1L] != keys[-count])) # of runs, which take less time to compare
    of_runs <- keys[starts]
    first <- !duplicated(of_runs)
    labels <- labels_of(groups[starts[first]])
    if (all(first))
        return(list(offsets = as.double(c(starts - 1L, count)), labels = labels))
    position <- rep(match(of_runs, of_runs[first]), diff(c(starts, count + 1L)))
    list(offsets = offsets_of(tabulate(position, sum(first))), order = order(position), labels = labels)
}

offsets_of <- function(counts) c(0, cumsum(as.double(counts)))

labels_of <- function(labels) if (!is.null(labels)) list(group = unname(labels))
