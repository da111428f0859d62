# A line that is a link to an example alone: the reference shows the example instead.
s|^\[examples/[^]]*\](\.\./\.\./\(examples/[^)]*\))$|\\include \1|
