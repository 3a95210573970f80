"""The readable text of a message, but for HTML and what is packed."""
