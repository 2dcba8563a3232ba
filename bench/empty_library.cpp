// Nothing: what it costs to load this library is what its dependencies cost, which are the plugin's.
