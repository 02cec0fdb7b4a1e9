// Empty on purpose: the target of the shared precompiled headers needs a file.
