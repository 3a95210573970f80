"""HTML as readable text."""
