# Completions of tabelion, from what its --help says.
complete -F _longopt tabelion
