"""Converts every scene below a folder, many at a time: the program meshcast-batch.

`scenes` finds the scenes and names their outputs. `engine` has GNU parallel run `job` for each, which
prints a row of the table. Rows gather in a journal in the order in which scenes are finished; a run
that is resumed takes from it what is done. When every scene has a row, `table` writes the table and
`gallery` the page.
"""
